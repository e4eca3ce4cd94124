#include "Platform/Linux/StandInEngine/Server.h"

#include <unistd.h>

#include <algorithm>
#include <utility>

#include "Platform/Linux/SessionFile.h"
#include "Platform/Linux/StandInEngine/Access.h"
#include "Platform/Linux/StandInEngine/Addresses.h"

namespace tapdeck {

using namespace standin;

namespace {

constexpr size_t kMostConnections = 8;
constexpr const char* kControlChannel = "com.tapdeck/control";

/// The list joins repeated headers, so that a second Host or Origin does not slip through.
const char* header(SoupServerMessage* message, const char* name) {
  return soup_message_headers_get_list(soup_server_message_get_request_headers(message), name);
}

std::string policyFor(const char* host) {
  // Some browsers do not count WebSocket as part of 'self'.
  return "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data: blob:; "
         "manifest-src 'self'; connect-src 'self' ws://" +
         std::string(host) + "; frame-ancestors 'none'; base-uri 'none'; form-action 'none'";
}

void setProtectiveHeaders(SoupServerMessage* message) {
  SoupMessageHeaders* headers = soup_server_message_get_response_headers(message);
  soup_message_headers_replace(headers, "Cache-Control", "no-store");
  soup_message_headers_replace(headers, "X-Content-Type-Options", "nosniff");
  soup_message_headers_replace(headers, "Referrer-Policy", "no-referrer");
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

StandInEngine::Peer peerOf(SoupServerMessage* message) {
  const char* address = soup_server_message_get_remote_host(message);
  const char* agent = header(message, "User-Agent");
  return {address != nullptr ? address : "", agent != nullptr ? agent : ""};
}

std::string whyNotListening(const StandInEngine::Options& options, const GError& error) {
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

StandInEngine::Server::Server(Options options)
    : _options(std::move(options)),
      _token(newToken()),
      // The path is looked up as it was sent; nothing in it is decoded.
      _http(SOUP_SERVER(g_object_new(SOUP_TYPE_SERVER, "raw-paths", TRUE, nullptr))) {}

void StandInEngine::Server::start() {
  listen();
  const auto owner = [this] { return new Weak(weak_from_this()); };
  const GDestroyNotify disown = [](gpointer data) { delete static_cast<Weak*>(data); };
  soup_server_add_early_handler(
      _http.get(), nullptr,
      [](SoupServer*, SoupServerMessage* message, const char*, GHashTable*, gpointer data) {
        if (const auto self = static_cast<Weak*>(data)->lock()) self->admit(message);
      },
      owner(), disown);
  soup_server_add_handler(
      _http.get(), nullptr,
      [](SoupServer*, SoupServerMessage* message, const char*, GHashTable* query, gpointer data) {
        if (const auto self = static_cast<Weak*>(data)->lock()) self->serve(message, query);
      },
      owner(), disown);
  try {
    writeSession({pageAddresses().back(), _port, _token, getpid()});
  } catch (const std::runtime_error& error) {
    stop();
    throw StandInEngineError(error.what());
  }
}

void StandInEngine::Server::listen() {
  const Object<GSocketAddress> address(
      g_inet_socket_address_new_from_string(_options.address.c_str(), _options.port));
  if (!address) {
    throw StandInEngineError("\"" + _options.address +
                             "\" is not an IP address. Give one of this computer with --listen, "
                             "such as 127.0.0.1, or 0.0.0.0 for all.");
  }
  GError* problem = nullptr;
  soup_server_listen(_http.get(), address.get(), SoupServerListenOptions(0), &problem);
  const ErrorHandle error(problem);
  if (error) throw StandInEngineError(whyNotListening(_options, *error));
  _port = listeningPort();
}

uint16_t StandInEngine::Server::listeningPort() const {
  GSList* listeners = soup_server_get_listeners(_http.get());
  const Object<GSocketAddress> address(
      g_socket_get_local_address(G_SOCKET(listeners->data), nullptr));
  g_slist_free(listeners);
  return address ? g_inet_socket_address_get_port(G_INET_SOCKET_ADDRESS(address.get())) : 0;
}

void StandInEngine::Server::stop() {
  if (!_http) return;
  // A later engine's file stays.
  const auto session = readSession();
  if (session && session->token == _token) removeSession(getpid());
  soup_server_disconnect(_http.get());
  _http.reset();
  const auto connections = _connections;
  for (const auto& connection : connections) {
    connection->close(SOUP_WEBSOCKET_CLOSE_GOING_AWAY, "the host ends");
  }
}

/// What holds for every request, decided before its body is read.
void StandInEngine::Server::admit(SoupServerMessage* message) {
  setProtectiveHeaders(message);
  soup_message_body_set_accumulate(soup_server_message_get_request_body(message), FALSE);
  const char* host = header(message, "Host");
  if (!isOwnHost(host, soup_server_message_get_local_address(message))) {
    refuse(message, 421, "Misdirected Request");
    return;
  }
  soup_message_headers_replace(soup_server_message_get_response_headers(message),
                               "Content-Security-Policy", policyFor(host).c_str());
  const std::string_view method = soup_server_message_get_method(message);
  if (method != "GET" && method != "HEAD") {
    soup_message_headers_replace(soup_server_message_get_response_headers(message), "Allow",
                                 "GET, HEAD");
    refuse(message, SOUP_STATUS_METHOD_NOT_ALLOWED, "Method Not Allowed");
  }
}

void StandInEngine::Server::serve(SoupServerMessage* message, GHashTable* query) {
  const std::string_view path = g_uri_get_path(soup_server_message_get_uri(message));
  if (path == "/engine") {
    serveUpgrade(message, query);
  } else {
    servePage(message);
  }
}

void StandInEngine::Server::servePage(SoupServerMessage* message) const {
  if (!_page.serve(message)) refuse(message, SOUP_STATUS_NOT_FOUND, "Not Found");
}

void StandInEngine::Server::serveUpgrade(SoupServerMessage* message, GHashTable* query) {
  const auto* token =
      static_cast<const char*>(query != nullptr ? g_hash_table_lookup(query, "token") : nullptr);
  if (token == nullptr || !equalInConstantTime(token, _token)) {
    refuse(message, SOUP_STATUS_FORBIDDEN, "Wrong token");
    return;
  }
  if (!isOwnOrigin(header(message, "Origin"), header(message, "Host"))) {
    refuse(message, SOUP_STATUS_FORBIDDEN, "Wrong origin");
    return;
  }
  if (!offersSubprotocol(message)) {
    refuse(message, SOUP_STATUS_BAD_REQUEST, "Wrong subprotocol");
    return;
  }
  if (_connections.size() >= kMostConnections) {
    refuse(message, SOUP_STATUS_SERVICE_UNAVAILABLE, "Too many connections");
    return;
  }
  char subprotocol[] = "tapdeck.engine.v1";
  char* subprotocols[] = {subprotocol, nullptr};
  if (!soup_websocket_server_process_handshake(message, nullptr, subprotocols, nullptr, nullptr)) {
    return;
  }
  const auto written = +[](SoupServerMessage* upgraded, gpointer data) {
    if (const auto self = static_cast<Weak*>(data)->lock()) self->completeUpgrade(upgraded);
  };
  g_signal_connect_data(
      message, "wrote-informational", G_CALLBACK(written), new Weak(weak_from_this()),
      [](gpointer data, GClosure*) { delete static_cast<Weak*>(data); }, GConnectFlags(0));
}

void StandInEngine::Server::completeUpgrade(SoupServerMessage* message) {
  const Object<SoupServerMessage> keep(SOUP_SERVER_MESSAGE(g_object_ref(message)));
  if (GSocket* socket = soup_server_message_get_socket(message)) noticeDeadPeer(socket);
  Peer peer = peerOf(message);
  const Object<GIOStream> stream(soup_server_message_steal_connection(message));
  if (!stream || !_http || _connections.size() >= kMostConnections) return;
  Connection::Events events;
  events.request = [weak = weak_from_this()](Connection& connection, const Request& request) {
    if (const auto self = weak.lock()) {
      self->forward(connection.shared_from_this(), request);
    }
  };
  events.ended = [weak = weak_from_this()](Connection& connection) {
    if (const auto self = weak.lock()) self->forget(connection);
  };
  _connections.push_back(Connection::open(stream.get(), soup_server_message_get_uri(message),
                                          std::move(peer), _options.silenceLimit,
                                          std::move(events)));
  peersChanged();
}

void StandInEngine::Server::forward(const std::shared_ptr<Connection>& connection,
                                    const Request& request) {
  Reply reply([weak = std::weak_ptr(connection), id = request.id,
               channel = request.channel](const Outcome& outcome) {
    if (const auto asking = weak.lock()) asking->send(encodeReply(id, channel, outcome));
  });
  const auto found = _handlers.find(request.channel);
  if (found == _handlers.end()) {
    reply.notImplemented();
    return;
  }
  if (request.channel == kControlChannel && !_holds.note(connection->number(), request.call)) {
    reply.success();
    connection->close(SOUP_WEBSOCKET_CLOSE_POLICY_VIOLATION, "too much held");
    return;
  }
  // The handler may replace itself.
  const MethodCallHandler handler = found->second;
  handler(request.call, std::move(reply));
}

void StandInEngine::Server::forget(const Connection& connection) {
  std::erase_if(_connections, [&](const auto& each) { return each.get() == &connection; });
  releaseHolds(connection);
  peersChanged();
}

void StandInEngine::Server::releaseHolds(const Connection& connection) {
  const auto calls = _holds.end(connection.number());
  const auto found = _handlers.find(kControlChannel);
  if (found == _handlers.end()) return;
  const MethodCallHandler handler = found->second;
  for (const MethodCall& call : calls) handler(call, Reply([](const Outcome&) {}));
}

void StandInEngine::Server::setMethodCallHandler(const std::string& channel,
                                                 MethodCallHandler handler) {
  if (handler) {
    _handlers[channel] = std::move(handler);
  } else {
    _handlers.erase(channel);
  }
}

void StandInEngine::Server::invokeMethod(const std::string& channel, const MethodCall& call) {
  const codec::Bytes message = encodeHostCall(channel, call);
  // A connection that fails while it is sent to takes itself off the list.
  const auto connections = _connections;
  for (const auto& connection : connections) connection->send(message);
}

std::vector<std::string> StandInEngine::Server::pageAddresses() const {
  std::vector<std::string> addresses = originsFor(_options.address, _port);
  for (std::string& address : addresses) address += "/#" + _token;
  return addresses;
}

std::vector<StandInEngine::Peer> StandInEngine::Server::peers() const {
  std::vector<Peer> peers;
  for (const auto& connection : _connections) peers.push_back(connection->peer());
  return peers;
}

void StandInEngine::Server::observePeers(std::function<void()> changed) {
  _observer = std::move(changed);
}

void StandInEngine::Server::peersChanged() {
  const auto changed = _observer;  // the observer may replace itself
  if (changed) changed();
}

}  // namespace tapdeck
