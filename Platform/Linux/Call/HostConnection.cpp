#include "Platform/Linux/Call/HostConnection.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <utility>

#include "Platform/Linux/EngineProtocol/Protocol.h"

namespace tapdeck {
namespace {

/// Above the most that the host lets wait for one connection.
constexpr guint64 kMaxMessage = guint64{64} << 20;

/// What the end of the attempt to connect leaves behind.
struct Attempt {
  bool isOver = false;
  SoupWebsocketConnection* socket = nullptr;
  glib::Error error;
};

void attemptEnded(GObject* session, GAsyncResult* result, gpointer data) noexcept {
  auto* attempt = static_cast<Attempt*>(data);
  GError* error = nullptr;
  attempt->socket = soup_session_websocket_connect_finish(SOUP_SESSION(session), result, &error);
  attempt->error.reset(error);
  attempt->isOver = true;
}

std::string engineAddress(const Session& session) {
  const glib::Uri page(g_uri_parse(session.url.c_str(), G_URI_FLAGS_NONE, nullptr));
  if (!page || g_uri_get_host(page.get()) == nullptr) {
    throw ConnectionError("The session file names no address: " + sessionFilePath().string() +
                          ". Stop the host and start it again with ./tapdeck run.");
  }
  const glib::Text token(g_uri_escape_string(session.token.c_str(), nullptr, FALSE));
  const std::string query = std::string("token=") + token.get();
  const glib::Text address(g_uri_join(G_URI_FLAGS_ENCODED, "ws", nullptr,
                                      g_uri_get_host(page.get()), session.port, "/engine",
                                      query.c_str(), nullptr));
  return address.get();
}

bool isRunning(int pid) {
  return ::kill(pid, 0) == 0 || errno == EPERM;
}

std::string whyNotConnected(const Session& session, SoupMessage* message, const GError& error) {
  const guint status = soup_message_get_status(message);
  if (status >= 400) {
    return "The host refused the connection (HTTP " + std::to_string(status) + "). Is " +
           sessionFilePath().string() +
           " an older run's? Stop the host and start it again with ./tapdeck run.";
  }
  if (!isRunning(session.pid)) {
    return "The host is not running any more (its session file is left over). Start it with "
           "./tapdeck run.";
  }
  return "Cannot reach the host on port " + std::to_string(session.port) + ": " + error.message +
         ". Start it with ./tapdeck run.";
}

}  // namespace

HostConnection::HostConnection(const Session& session, Deadline deadline)
    // The host is on this computer: no proxy of the user's may come between.
    : _session(SOUP_SESSION(g_object_new(SOUP_TYPE_SESSION, "proxy-resolver", nullptr, nullptr))) {
  connect(session, deadline);
}

HostConnection::~HostConnection() {
  if (!_socket) return;
  g_signal_handlers_disconnect_by_data(_socket.get(), this);
  if (soup_websocket_connection_get_state(_socket.get()) != SOUP_WEBSOCKET_STATE_OPEN) return;
  soup_websocket_connection_close(_socket.get(), SOUP_WEBSOCKET_CLOSE_NORMAL, nullptr);
  // Let the goodbye go out, so that the host need not guess.
  waitUntil(
      [this] {
        return soup_websocket_connection_get_state(_socket.get()) == SOUP_WEBSOCKET_STATE_CLOSED;
      },
      std::chrono::steady_clock::now() + std::chrono::seconds(1));
}

void HostConnection::connect(const Session& session, Deadline deadline) {
  const glib::Object<SoupMessage> message(
      soup_message_new(SOUP_METHOD_GET, engineAddress(session).c_str()));
  if (!message) throw ConnectionError("The session file names no usable address: " + session.url);
  const glib::Object<GCancellable> cancellable(g_cancellable_new());
  const char* protocols[] = {standin::kSubprotocol, nullptr};
  Attempt attempt;
  soup_session_websocket_connect_async(_session.get(), message.get(), nullptr,
                                       const_cast<char**>(protocols), G_PRIORITY_DEFAULT,
                                       cancellable.get(), attemptEnded, &attempt);
  const auto isOver = [&] { return attempt.isOver; };
  const bool inTime = waitUntil(isOver, deadline);
  if (!inTime) {
    g_cancellable_cancel(cancellable.get());
    waitUntil(isOver, std::nullopt);
  }
  if (attempt.socket != nullptr) {
    adopt(attempt.socket);
  } else if (!inTime) {
    throw ConnectionError(
        "The host does not answer. Stop it and start it again with ./tapdeck run.");
  } else {
    throw ConnectionError(whyNotConnected(session, message.get(), *attempt.error));
  }
}

void HostConnection::adopt(SoupWebsocketConnection* socket) {
  _socket.reset(socket);
  soup_websocket_connection_set_max_incoming_payload_size(socket, kMaxMessage);
  const auto onMessage =
      +[](SoupWebsocketConnection*, gint type, GBytes* message, gpointer self) noexcept {
        if (type != SOUP_WEBSOCKET_DATA_BINARY) return;
        gsize size = 0;
        const auto* data = static_cast<const uint8_t*>(g_bytes_get_data(message, &size));
        static_cast<HostConnection*>(self)->_received.emplace_back(data, data + size);
      };
  g_signal_connect(socket, "message", G_CALLBACK(onMessage), this);
}

void HostConnection::send(const codec::Bytes& message) {
  if (soup_websocket_connection_get_state(_socket.get()) != SOUP_WEBSOCKET_STATE_OPEN) {
    throw ConnectionError(farewell());
  }
  soup_websocket_connection_send_binary(_socket.get(), message.data(), message.size());
}

std::optional<codec::Bytes> HostConnection::receive(Deadline deadline) {
  waitUntil(
      [this] {
        return !_received.empty() ||
               soup_websocket_connection_get_state(_socket.get()) == SOUP_WEBSOCKET_STATE_CLOSED;
      },
      deadline);
  if (!_received.empty()) {
    codec::Bytes first = std::move(_received.front());
    _received.pop_front();
    return first;
  }
  if (soup_websocket_connection_get_state(_socket.get()) == SOUP_WEBSOCKET_STATE_CLOSED) {
    throw ConnectionError(farewell());
  }
  return std::nullopt;
}

std::string HostConnection::farewell() const {
  std::string text = "The connection to the host was lost";
  const gushort code = soup_websocket_connection_get_close_code(_socket.get());
  const char* reason = soup_websocket_connection_get_close_data(_socket.get());
  if (code != 0) text += " (WebSocket status " + std::to_string(code) + ")";
  if (reason != nullptr && *reason != '\0') text += std::string(": ") + reason;
  return text + ". If the host has ended, start it with ./tapdeck run.";
}

bool HostConnection::waitUntil(const std::function<bool()>& done, Deadline deadline) {
  bool isLate = false;
  guint timer = 0;
  if (deadline) {
    using std::chrono::milliseconds;
    const auto left = std::chrono::ceil<milliseconds>(*deadline - std::chrono::steady_clock::now());
    const auto late = +[](gpointer flag) noexcept -> gboolean {
      *static_cast<bool*>(flag) = true;
      return G_SOURCE_REMOVE;
    };
    timer = g_timeout_add(static_cast<guint>(std::max<int64_t>(left.count(), 0)), late, &isLate);
  }
  while (!done() && !isLate) g_main_context_iteration(nullptr, TRUE);
  if (timer != 0 && !isLate) g_source_remove(timer);
  return done();
}

}  // namespace tapdeck
