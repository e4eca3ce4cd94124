#include "Platform/Linux/StandInEngine/Server.h"

#include <unistd.h>

#include <algorithm>
#include <utility>

#include "Engine/Channels.h"
#include "Platform/Linux/EngineProtocol/SessionFile.h"
#include "Platform/Linux/StandInEngine/Access.h"
#include "Platform/Linux/StandInEngine/Addresses.h"
#include "Platform/Linux/StandInEngine/Certificate.h"

namespace tapdeck::standin {

namespace {

using glib::Object;

constexpr size_t kMaxConnections = 8;
/// Typing takes the main thread for 5 ms a character.
constexpr size_t kMaxTextCharacters = 6000;
/// Less than half of what a connection may leave unread.
constexpr size_t kMaxReply = (size_t{16} << 20) + (size_t{64} << 10);

/// A close code of our own.
constexpr uint16_t kNetworkOff = 4003;

/// The list joins repeated headers, so that a second Host or Origin does not slip through.
const char* header(SoupServerMessage* message, const char* name) {
  return soup_message_headers_get_list(soup_server_message_get_request_headers(message), name);
}

/// Whether it is 127.0.0.1 or ::1, where connections from this computer arrive.
bool isLocalhost(GSocketAddress* local) {
  return !standin::isEncryptedAt(g_inet_socket_address_get_address(G_INET_SOCKET_ADDRESS(local)));
}

std::string policyFor(const char* host, bool isEncrypted) {
  // Some browsers do not count WebSocket as part of 'self'.
  return "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data: blob:; "
         "manifest-src 'self'; connect-src 'self' " +
         std::string(isEncrypted ? "wss://" : "ws://") + host +
         "; frame-ancestors 'none'; base-uri 'none'; form-action 'none'";
}

void setProtectiveHeaders(SoupServerMessage* message) {
  SoupMessageHeaders* headers = soup_server_message_get_response_headers(message);
  soup_message_headers_replace(headers, "Cache-Control", "no-store");
  soup_message_headers_replace(headers, "X-Content-Type-Options", "nosniff");
  soup_message_headers_replace(headers, "Referrer-Policy", "no-referrer");
  soup_message_headers_replace(headers, "Cross-Origin-Resource-Policy", "same-origin");
  // libsoup before 3.3 keeps an idle connection after its client has closed it.
  soup_message_headers_replace(headers, "Connection", "close");
}

void refuse(SoupServerMessage* message, guint status, const char* reason) {
  soup_server_message_set_status(message, status, reason);
  const std::string text = std::string(reason) + "\n";
  soup_server_message_set_response(message, "text/plain; charset=utf-8", SOUP_MEMORY_COPY,
                                   text.data(), text.size());
}

bool offersSubprotocol(SoupServerMessage* message) {
  const char* offered = header(message, "Sec-WebSocket-Protocol");
  return offered != nullptr && soup_header_contains(offered, kSubprotocol);
}

EnginePeer peerOf(SoupServerMessage* message) {
  const char* address = soup_server_message_get_remote_host(message);
  const char* agent = header(message, "User-Agent");
  return {address != nullptr ? address : "", agent != nullptr ? agent : "", 0, false};
}

bool isTextTooLong(const MethodCall& call) {
  if (call.method != "typeText") return false;
  const auto* map = call.arguments.getIf<Value::Map>();
  const Value* value = map != nullptr ? map->find("text") : nullptr;
  const auto* text = value != nullptr ? value->getIf<std::string>() : nullptr;
  if (text == nullptr) return false;
  // a UTF-8 character's bytes but the first are all of the form 10xxxxxx
  const auto characters =
      std::count_if(text->begin(), text->end(), [](char byte) { return (byte & 0xc0) != 0x80; });
  return std::cmp_greater(characters, kMaxTextCharacters);
}

bool pressesButton(const Request& request) {
  if (request.channel != kControlChannel) return false;
  const std::string& method = request.call.method;
  return method == "click" || method == "doubleClick" || method == "mouseDown";
}

codec::Message encodeBoundedReply(int64_t id, const std::string& channel, const Outcome& outcome) {
  codec::Message message = encodeReply(id, channel, outcome);
  if (message.size() <= kMaxReply) return message;
  return encodeReply(id, channel,
                     MethodError{"TOO_LARGE", "More than 16 MiB cannot be sent.", Value()});
}

std::string whyNotListening(const EngineOptions& options, const GError& error) {
  const std::string port = std::to_string(options.port);
  if (error.domain == G_IO_ERROR) {
    switch (error.code) {
      case G_IO_ERROR_ADDRESS_IN_USE:
        return "Port " + port +
               " is taken by another program. Choose another port with --port N, " +
               "or end the other program if it is a Tapdeck.";
      case G_IO_ERROR_PERMISSION_DENIED:
        return "Port " + port + " is reserved for the system. Choose a port from 1024 up with " +
               "--port N.";
      default:
        break;
    }
  }
  return "Cannot listen on " + options.address + " (" + error.message +
         "). Give an address of this computer with --listen, such as 127.0.0.1, or 0.0.0.0 for "
         "all.";
}

}  // namespace

Server::Server(EngineOptions options)
    : _options(std::move(options)),
      _token(randomDigits(16)),
      // else libsoup answers some paths itself
      _http(SOUP_SERVER(g_object_new(SOUP_TYPE_SERVER, "raw-paths", TRUE, nullptr))),
      _pending(_options.pendingLimit),
      _scheduler(
          [this](ConnectionNumber connection, const Request& request) {
            const auto keep = shared_from_this();
            carryOut(connection, request);
          },
          [isPressWaiting = _options.isPressWaiting](const Request& request) {
            return !isPressWaiting || !pressesButton(request) || !isPressWaiting();
          }),
      _devices(_options.devicesFile) {}

void Server::start() {
  if (_options.isEncrypted) useCertificate();
  listen();
  const auto owner = [this] { return new Weak(weak_from_this()); };
  const GDestroyNotify disown = [](gpointer data) noexcept { delete static_cast<Weak*>(data); };
  soup_server_add_early_handler(
      _http.get(), nullptr,
      [](SoupServer*, SoupServerMessage* message, const char*, GHashTable*,
         gpointer data) noexcept {
        if (const auto self = static_cast<Weak*>(data)->lock()) self->admit(message);
      },
      owner(), disown);
  soup_server_add_handler(
      _http.get(), nullptr,
      [](SoupServer*, SoupServerMessage* message, const char*, GHashTable* query,
         gpointer data) noexcept {
        if (const auto self = static_cast<Weak*>(data)->lock()) self->serve(message, query);
      },
      owner(), disown);
  watchNetwork();
  try {
    writeSessionFile();
  } catch (const std::runtime_error& error) {
    stop();
    throw StandInEngineError(error.what());
  }
}

/// The addresses at which the page is reached come and go with the network's interfaces.
void Server::watchNetwork() {
  const auto changed = +[](GNetworkMonitor*, gboolean, gpointer self) noexcept {
    const auto server = static_cast<Server*>(self)->shared_from_this();
    server->notifyObserver();
  };
  _networkSignal = g_signal_connect(g_network_monitor_get_default(), "network-changed",
                                    G_CALLBACK(changed), this);
}

void Server::writeSessionFile() const {
  writeSession({pageAddresses().back(), _port, _token, getpid()});
}

void Server::listenOn(const std::string& address) {
  const std::string before = std::exchange(_options.address, address);
  const uint16_t chosenPort = std::exchange(_options.port, _port);
  // two sockets cannot listen at one port, if one of them does so for every address
  _listener.reset();
  try {
    listen();
    writeSessionFile();
  } catch (const std::runtime_error& error) {
    _options.address = before;
    _listener.reset();
    listen();
    _options.port = chosenPort;
    throw StandInEngineError(error.what());
  }
  _options.port = chosenPort;
  const auto connections = _connections;
  for (const auto& connection : connections) {
    if (!isServedAt(connection->localAddress().get())) {
      connection->close(kNetworkOff, "the network was switched off");
    }
  }
  notifyObserver();
}

void Server::useCertificate() {
  try {
    _certificate = ownCertificate(_options.certificateFile);
  } catch (const std::runtime_error& error) {
    throw StandInEngineError(error.what());
  }
}

void Server::setEncrypted(bool isEncrypted) {
  if (isEncrypted == this->isEncrypted()) return;
  if (isEncrypted) {
    useCertificate();
  } else {
    _certificate.reset();
  }
  const auto connections = _connections;
  for (const auto& connection : connections) {
    const auto local = connection->localAddress();
    if (local && !isLocalhost(local.get())) {
      connection->close(kNetworkOff, "encryption was switched");
    }
  }
  notifyObserver();
}

std::string Server::fingerprint() const {
  return _certificate ? fingerprintOf(_certificate.get()) : "";
}

bool Server::isEncryptedAt(GSocketAddress* local) const {
  return isEncrypted() && !isLocalhost(local);
}

bool Server::isServedAt(GSocketAddress* local) const {
  if (!G_IS_INET_SOCKET_ADDRESS(local)) return false;
  const Object<GInetAddress> own(g_inet_address_new_from_string(_options.address.c_str()));
  GInetAddress* address = g_inet_socket_address_get_address(G_INET_SOCKET_ADDRESS(local));
  return g_inet_address_get_is_any(own.get()) || g_inet_address_equal(own.get(), address);
}

void Server::listen() {
  const Object<GSocketAddress> address(
      g_inet_socket_address_new_from_string(_options.address.c_str(), _options.port));
  if (!address) {
    throw StandInEngineError("\"" + _options.address +
                             "\" is not an IP address. Give one of this computer with --listen, "
                             "such as 127.0.0.1, or 0.0.0.0 for all.");
  }
  GError* problem = nullptr;
  _listener = Listener::open(
      address.get(),
      [weak = weak_from_this()](Object<GSocketConnection> accepted) {
        if (const auto self = weak.lock()) self->takeIn(std::move(accepted));
      },
      &problem);
  const glib::Error error(problem);
  if (error) throw StandInEngineError(whyNotListening(_options, *error));
  _port = _listener->port();
}

void Server::takeIn(Object<GSocketConnection> accepted) {
  enableTcpKeepalive(g_socket_connection_get_socket(accepted.get()));
  const Object<GSocketAddress> local(
      g_socket_connection_get_local_address(accepted.get(), nullptr));
  const Object<GSocketAddress> remote(
      g_socket_connection_get_remote_address(accepted.get(), nullptr));
  if (!local || !remote) return;
  const auto requestLine = std::make_shared<RequestLine>();
  _pending.add(accepted.get(), remote.get(), requestLine);
  Object<GIOStream> stream(G_IO_STREAM(g_object_ref(accepted.get())));
  if (isEncryptedAt(local.get())) {
    stream.reset(
        g_tls_server_connection_new(G_IO_STREAM(accepted.get()), _certificate.get(), nullptr));
    if (!stream) return;
  }
  stream = newNotingStream(stream.get(), requestLine);
  soup_server_accept_iostream(_http.get(), stream.get(), local.get(), remote.get(), nullptr);
}

void Server::stop() {
  if (!_http) return;
  // A later engine's file stays.
  const auto session = readSession();
  if (session && session->token == _token) removeSession(getpid());
  g_signal_handler_disconnect(g_network_monitor_get_default(), _networkSignal);
  _listener.reset();
  soup_server_disconnect(_http.get());
  _http.reset();
  const auto connections = _connections;
  for (const auto& connection : connections) {
    connection->close(SOUP_WEBSOCKET_CLOSE_GOING_AWAY, "the host ends");
  }
}

/// What holds for every request, decided before its body is read.
void Server::admit(SoupServerMessage* message) {
  setProtectiveHeaders(message);
  soup_message_body_set_accumulate(soup_server_message_get_request_body(message), FALSE);
  const char* host = header(message, "Host");
  GSocketAddress* local = soup_server_message_get_local_address(message);
  if (!isOwnHost(host, local) || !isServedAt(local)) {
    refuse(message, 421, "Misdirected Request");
    return;
  }
  soup_message_headers_replace(soup_server_message_get_response_headers(message),
                               "Content-Security-Policy",
                               policyFor(host, isEncryptedAt(local)).c_str());
  const std::string_view method = soup_server_message_get_method(message);
  if (method != "GET" && method != "HEAD") {
    soup_message_headers_replace(soup_server_message_get_response_headers(message), "Allow",
                                 "GET, HEAD");
    refuse(message, SOUP_STATUS_METHOD_NOT_ALLOWED, "Method Not Allowed");
  }
}

void Server::serve(SoupServerMessage* message, GHashTable* query) {
  // libsoup's path is a normal form of what was sent, which no browser needs
  const std::string_view target =
      _pending.requestTarget(soup_server_message_get_remote_address(message));
  const std::string_view path = target.substr(0, target.find('?'));
  if (path == "/engine") {
    serveUpgrade(message, query);
  } else if (path == "/access") {
    serveAccess(message, query);
  } else {
    servePage(message, target);
  }
}

void Server::servePage(SoupServerMessage* message, std::string_view path) const {
  if (!_page.serve(message, path)) refuse(message, SOUP_STATUS_NOT_FOUND, "Not Found");
}

/// Says what an upgrade would meet with, since a browser tells a page nothing of a refused one.
void Server::serveAccess(SoupServerMessage* message, GHashTable* query) {
  const auto say = [message](guint status, const char* access) {
    soup_server_message_set_status(message, status, nullptr);
    const std::string json = std::string("{\"access\":\"") + access + "\"}";
    soup_server_message_set_response(message, "application/json", SOUP_MEMORY_COPY, json.data(),
                                     json.size());
  };
  switch (accessBy(query).kind) {
    case Access::Kind::granted:
      if (_connections.size() < kMaxConnections) {
        say(SOUP_STATUS_OK, "granted");
      } else {
        say(SOUP_STATUS_SERVICE_UNAVAILABLE, "full");
      }
      return;
    case Access::Kind::wrongToken:
      say(SOUP_STATUS_FORBIDDEN, "wrong-token");
      break;
    case Access::Kind::forgotten:
      say(SOUP_STATUS_FORBIDDEN, "forgotten");
      break;
  }
  delayRefusal(message);
}

void Server::serveUpgrade(SoupServerMessage* message, GHashTable* query) {
  const Access access = accessBy(query);
  if (access.kind != Access::Kind::granted) {
    refuse(message, SOUP_STATUS_FORBIDDEN,
           access.kind == Access::Kind::forgotten ? "Unknown device" : "Wrong token");
    delayRefusal(message);
    return;
  }
  const bool isEncrypted = isEncryptedAt(soup_server_message_get_local_address(message));
  if (!isOwnOrigin(header(message, "Origin"), isEncrypted ? "https" : "http",
                   header(message, "Host"))) {
    refuse(message, SOUP_STATUS_FORBIDDEN, "Wrong origin");
    return;
  }
  if (!offersSubprotocol(message)) {
    refuse(message, SOUP_STATUS_BAD_REQUEST, "Wrong subprotocol");
    return;
  }
  if (_connections.size() >= kMaxConnections) {
    refuse(message, SOUP_STATUS_SERVICE_UNAVAILABLE, "Too many connections");
    return;
  }
  soup_message_headers_remove(soup_server_message_get_response_headers(message), "Connection");
  char* subprotocols[] = {const_cast<char*>(kSubprotocol), nullptr};
  if (!soup_websocket_server_process_handshake(message, nullptr, subprotocols, nullptr, nullptr)) {
    return;
  }
  struct Upgrade {
    Weak server;
    std::optional<standin::Device> device;
  };
  const auto written = +[](SoupServerMessage* upgraded, gpointer data) noexcept {
    const auto* upgrade = static_cast<Upgrade*>(data);
    if (const auto self = upgrade->server.lock()) self->completeUpgrade(upgraded, upgrade->device);
  };
  g_signal_connect_data(
      message, "wrote-informational", G_CALLBACK(written),
      new Upgrade{weak_from_this(), access.device},
      [](gpointer data, GClosure*) noexcept { delete static_cast<Upgrade*>(data); },
      GConnectFlags(0));
}

void Server::delayRefusal(SoupServerMessage* message) {
  const std::string address = peerOf(message).address;
  const auto delay = _failedLogins.note(address, FailedLogins::Clock::now());
  notifyObserver();
  if (!delay) {
    soup_message_headers_replace(soup_server_message_get_response_headers(message), "Retry-After",
                                 "2");
    constexpr std::string_view json = R"({"access":"slowed"})";
    soup_server_message_set_status(message, 429, "Too Many Requests");
    soup_server_message_set_response(message, "application/json", SOUP_MEMORY_STATIC, json.data(),
                                     json.size());
    return;
  }
  if (delay->count() == 0) return;
  struct Waiting {
    Weak server;
    Object<SoupServerMessage> message;
    std::string address;
  };
  soup_server_message_pause(message);
  const GSourceFunc answer = [](gpointer data) noexcept -> gboolean {
    const auto* waiting = static_cast<Waiting*>(data);
    soup_server_message_unpause(waiting->message.get());
    if (const auto self = waiting->server.lock()) self->_failedLogins.answered(waiting->address);
    return G_SOURCE_REMOVE;
  };
  g_timeout_add_full(
      G_PRIORITY_DEFAULT, static_cast<guint>(delay->count()), answer,
      new Waiting{weak_from_this(),
                  Object<SoupServerMessage>(SOUP_SERVER_MESSAGE(g_object_ref(message))), address},
      [](gpointer data) noexcept { delete static_cast<Waiting*>(data); });
}

void Server::completeUpgrade(SoupServerMessage* message,
                             const std::optional<standin::Device>& device) {
  const Object<SoupServerMessage> keep(SOUP_SERVER_MESSAGE(g_object_ref(message)));
  EnginePeer peer = peerOf(message);
  Connection::Upgraded upgraded{Object<GIOStream>(soup_server_message_steal_connection(message)),
                                _pending.take(soup_server_message_get_remote_address(message)),
                                soup_server_message_get_uri(message)};
  if (!upgraded.stream || !upgraded.socket || !_http || _connections.size() >= kMaxConnections)
    return;
  Connection::Events events;
  events.request = [weak = weak_from_this()](Connection& connection, Request request, size_t size) {
    const auto self = weak.lock();
    if (self) self->_scheduler.add(connection.number(), std::move(request), size);
  };
  events.mayRead = [weak = weak_from_this()](const Connection& connection) {
    const auto self = weak.lock();
    return !self || !self->_scheduler.isFull(connection.number());
  };
  events.ended = [weak = weak_from_this()](Connection& connection) {
    if (const auto self = weak.lock()) self->forget(connection);
  };
  _connections.push_back(Connection::open(std::move(upgraded), std::move(peer),
                                          _options.silenceLimit, std::move(events)));
  _clients.add(_connections.back()->number(), device);
  if (device) _devices.noteSeen(device->id);
  notifyObserver();
}

std::shared_ptr<standin::Connection> Server::connectionOf(ConnectionNumber number) const {
  const auto found = std::find_if(_connections.begin(), _connections.end(),
                                  [number](const auto& each) { return each->number() == number; });
  return found != _connections.end() ? *found : nullptr;
}

void Server::carryOut(ConnectionNumber number, const Request& request) {
  const auto connection = connectionOf(number);
  if (!connection || connection->endIfPeerIsGone()) return;
  if (BackgroundCalls::includes(request)) {
    const auto admission = _background.admit(number, request);
    if (admission == BackgroundCalls::Admission::refused) {
      connection->send(
          encodeReply(request.id, request.channel,
                      MethodError{"BUSY", "Too many calls wait for an answer.", Value()}));
    }
    if (admission != BackgroundCalls::Admission::starts) return;
  }
  forward(connection, request);
}

Reply Server::replyTo(const std::shared_ptr<Connection>& connection, const Request& request) {
  return Reply([weak = std::weak_ptr(connection), server = weak_from_this(), id = request.id,
                channel = request.channel,
                isBackground = BackgroundCalls::includes(request)](const Outcome& outcome) {
    const auto asking = weak.lock();
    if (!asking) return;
    asking->send(encodeBoundedReply(id, channel, outcome));
    const auto self = server.lock();
    if (!self || !isBackground) return;
    if (const auto next = self->_background.finished(asking->number())) {
      self->forward(asking, *next);
    }
  });
}

void Server::forward(const std::shared_ptr<Connection>& connection, const Request& request) {
  Reply reply = replyTo(connection, request);
  if (request.channel == kDevicesChannel) {
    answerAboutDevices(connection, request.call, std::move(reply));
    return;
  }
  const auto found = _handlers.find(request.channel);
  if (found == _handlers.end()) {
    reply.notImplemented();
    return;
  }
  if (request.channel == kControlChannel) {
    if (isTextTooLong(request.call)) {
      reply.error("TEXT_TOO_LONG", "At most " + std::to_string(kMaxTextCharacters) +
                                       " characters are typed at once.");
      return;
    }
    if (!_holds.note(connection->number(), request.call)) {
      reply.success();
      connection->close(SOUP_WEBSOCKET_CLOSE_POLICY_VIOLATION, "too much held");
      return;
    }
    for (const auto& each : _connections) each->setHolding(_holds.holdsAny(each->number()));
  }
  if (request.channel == kControlChannel && Pictures::isCapture(request.call)) {
    capture(connection, request.call, std::move(reply));
    return;
  }
  if (request.channel == kControlChannel && request.call.method == "resetScreenCapture") {
    _pictures.reset(connection->number());
  }
  // The handler may replace itself.
  const MethodCallHandler handler = found->second;
  handler(request.call, std::move(reply));
}

void Server::capture(const std::shared_ptr<Connection>& connection, const MethodCall& call,
                     Reply reply) {
  const MethodCallHandler handler = _handlers.at(kControlChannel);
  const auto answer = std::make_shared<Reply>(std::move(reply));
  const auto ask = [weak = weak_from_this(), number = connection->number(), call, answer, handler](
                       const MethodCall& asked, const auto& again) -> void {
    handler(asked, Reply([=](Outcome outcome) {
              const auto self = weak.lock();
              auto settled = self ? self->_pictures.settle(number, call, outcome) : outcome;
              if (settled || again == nullptr) {
                answer->answer(settled ? *std::move(settled) : std::move(outcome));
              } else {
                again();
              }
            }));
  };
  const std::function<void()> askForced = [ask, call] {
    ask(Pictures::forced(call), std::function<void()>());
  };
  ask(call, askForced);
}

void Server::forget(const Connection& connection) {
  std::erase_if(_connections, [&](const auto& each) { return each.get() == &connection; });
  _scheduler.drop(connection.number());
  _background.drop(connection.number());
  if (const auto* client = _clients.find(connection.number());
      client != nullptr && client->device) {
    _devices.noteSeen(client->device->id);
  }
  _clients.remove(connection.number());
  _pictures.reset(connection.number());
  releaseHolds(connection);
  sendCount();
  notifyObserver();
}

void Server::releaseHolds(const Connection& connection) {
  const auto calls = _holds.end(connection.number());
  const auto found = _handlers.find(kControlChannel);
  if (found == _handlers.end()) return;
  const MethodCallHandler handler = found->second;
  for (const MethodCall& call : calls) handler(call, Reply([](const Outcome&) {}));
}

void Server::setMethodCallHandler(const std::string& channel, MethodCallHandler handler) {
  if (handler) {
    _handlers[channel] = std::move(handler);
  } else {
    _handlers.erase(channel);
  }
}

void Server::invokeMethod(const std::string& channel, const MethodCall& call) {
  const codec::Message message = encodeHostCall(channel, call);
  // A connection that fails while it is sent to takes itself off the list.
  const auto connections = _connections;
  for (const auto& connection : connections) connection->send(message);
}

std::vector<std::string> Server::pageAddresses() const {
  std::vector<std::string> addresses = originsFor(_options.address, _port, isEncrypted());
  for (std::string& address : addresses) address += "/#" + _token;
  return addresses;
}

std::vector<EnginePeer> Server::peers() const {
  std::vector<EnginePeer> peers;
  for (const auto& connection : _connections) {
    EnginePeer& peer = peers.emplace_back(connection->peer());
    peer.connection = connection->number();
    const Clients::Client* client = _clients.find(connection->number());
    peer.isPaired = client != nullptr && client->device.has_value();
  }
  return peers;
}

void Server::observe(std::function<void()> changed) {
  _observer = std::move(changed);
}

void Server::notifyObserver() {
  const auto changed = _observer;  // the observer may replace itself
  if (changed) changed();
}

}  // namespace tapdeck::standin
