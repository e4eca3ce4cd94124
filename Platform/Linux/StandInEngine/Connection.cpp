#include "Platform/Linux/StandInEngine/Connection.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>

#include <algorithm>
#include <ranges>
#include <span>
#include <utility>
#include <vector>

#include "Platform/Linux/StandInEngine/BoundedStream.h"
#include "Platform/Linux/StandInEngine/FrameHeader.h"

namespace tapdeck::standin {
namespace {

using glib::Object;

/// Room for the frame headers of a message in fragments.
constexpr StreamBounds kBounds = {kMaxMessage + (size_t{64} << 10), kMaxUnsent};
constexpr int kSilentTicksAllowed = 5;
constexpr std::chrono::seconds kSilenceLimitHolding{5};
/// A masked frame's header, without an extended length.
constexpr size_t kControlFrameHeader = 6;

uint64_t nextNumber() {
  static uint64_t number = 0;
  return ++number;
}

/// libsoup goes on using its connection after a signal's handlers have run.
void releaseLater(Object<SoupWebsocketConnection> socket) {
  g_idle_add_full(
      G_PRIORITY_DEFAULT, [](gpointer) noexcept -> gboolean { return G_SOURCE_REMOVE; },
      socket.release(), g_object_unref);
}

/// Lets the closing handshake, which libsoup bounds to 5 seconds, go on without an owner.
void releaseOnceClosed(Object<SoupWebsocketConnection> socket) {
  if (soup_websocket_connection_get_state(socket.get()) == SOUP_WEBSOCKET_STATE_CLOSED) {
    releaseLater(std::move(socket));
    return;
  }
  const auto closed = +[](SoupWebsocketConnection* self, gpointer) noexcept {
    releaseLater(Object<SoupWebsocketConnection>(self));
  };
  g_signal_connect(socket.release(), "closed", G_CALLBACK(closed), nullptr);
}

}  // namespace

std::shared_ptr<Connection> Connection::open(Upgraded upgraded, EnginePeer peer,
                                             std::chrono::milliseconds silenceLimit,
                                             Events events) {
  std::shared_ptr<Connection> connection(
      new Connection(std::move(upgraded), std::move(peer), silenceLimit, std::move(events)));
  connection->watchSilence();
  return connection;
}

Connection::Connection(Upgraded upgraded, EnginePeer peer, std::chrono::milliseconds silenceLimit,
                       Events events)
    : _number(nextNumber()),
      _peer(std::move(peer)),
      _silenceLimit(silenceLimit),
      _events(std::move(events)),
      _tcp(std::move(upgraded.socket)),
      _stream(newBoundedStream(upgraded.stream.get(), kBounds)),
      _socket(soup_websocket_connection_new(_stream.get(), upgraded.uri,
                                            SOUP_WEBSOCKET_CONNECTION_SERVER, nullptr, kSubprotocol,
                                            nullptr)) {
  soup_websocket_connection_set_max_incoming_payload_size(_socket.get(), kMaxMessage);
  readOnlyWhile(_stream.get(), [this] { return _ended || _events.mayRead(*this); });
  connectSignals();
}

Connection::~Connection() {
  readOnlyWhile(_stream.get(), {});
  g_signal_handlers_disconnect_by_data(_socket.get(), this);
  if (soup_websocket_connection_get_state(_socket.get()) == SOUP_WEBSOCKET_STATE_OPEN) {
    soup_websocket_connection_close(_socket.get(), SOUP_WEBSOCKET_CLOSE_GOING_AWAY, nullptr);
  }
  releaseOnceClosed(std::move(_socket));
}

void Connection::connectSignals() {
  // The events may drop the last owner of the connection in the middle of a handler.
  const auto message =
      +[](SoupWebsocketConnection*, int type, GBytes* bytes, gpointer self) noexcept {
        const auto connection = static_cast<Connection*>(self)->shared_from_this();
        connection->takeMessage(static_cast<SoupWebsocketDataType>(type), bytes);
      };
  const auto pong = +[](SoupWebsocketConnection*, GByteArray* payload, gpointer self) noexcept {
    auto* connection = static_cast<Connection*>(self);
    connection->_silentTicks = 0;
    discountControlFrame(connection->_stream.get(), kControlFrameHeader + payload->len);
  };
  const auto error = +[](SoupWebsocketConnection*, GError* problem, gpointer self) noexcept {
    const auto connection = static_cast<Connection*>(self)->shared_from_this();
    connection->takeError(*problem);
  };
  const auto ended = +[](SoupWebsocketConnection*, gpointer self) noexcept {
    const auto connection = static_cast<Connection*>(self)->shared_from_this();
    connection->end();
  };
  g_signal_connect(_socket.get(), "message", G_CALLBACK(message), this);
  g_signal_connect(_socket.get(), "pong", G_CALLBACK(pong), this);
  g_signal_connect(_socket.get(), "error", G_CALLBACK(error), this);
  g_signal_connect(_socket.get(), "closing", G_CALLBACK(ended), this);
  g_signal_connect(_socket.get(), "closed", G_CALLBACK(ended), this);
}

void Connection::watchSilence() {
  const auto limit = _isHolding
                         ? std::min<std::chrono::milliseconds>(_silenceLimit, kSilenceLimitHolding)
                         : _silenceLimit;
  // several pings in the time, in whole seconds as libsoup counts them
  const auto pingEvery = std::chrono::duration_cast<std::chrono::seconds>(
      _isHolding ? limit / kSilentTicksAllowed : limit * 2 / kSilentTicksAllowed);
  soup_websocket_connection_set_keepalive_interval(
      _socket.get(), static_cast<guint>(std::max<int64_t>(1, pingEvery.count())));
  // Ticks are counted, not time: after the main thread was busy for long, what the peer has sent
  // meanwhile is read before the next tick.
  _silentTicks = 0;
  const auto tick = std::max<int64_t>(1, limit.count() / kSilentTicksAllowed);
  _silenceWatch.reset(g_timeout_source_new(static_cast<guint>(tick)));
  const GSourceFunc callback = [](gpointer self) noexcept -> gboolean {
    const auto connection = static_cast<Connection*>(self)->shared_from_this();
    connection->countSilence();
    return G_SOURCE_CONTINUE;
  };
  g_source_set_callback(_silenceWatch.get(), callback, this, nullptr);
  g_source_attach(_silenceWatch.get(), nullptr);
}

void Connection::setHolding(bool isHolding) {
  if (_ended || isHolding == _isHolding) return;
  _isHolding = isHolding;
  watchSilence();
}

bool Connection::endIfPeerIsGone() {
  if (_ended) return true;
  pollfd socket{g_socket_get_fd(_tcp.get()), POLLRDHUP, 0};
  if (::poll(&socket, 1, 0) > 0) end();
  return _ended;
}

void Connection::send(const codec::Message& message) {
  if (_ended) return;
  if (soup_websocket_connection_get_state(_socket.get()) != SOUP_WEBSOCKET_STATE_OPEN) {
    // the peer's end was read, the signal for it is to come
    end();
    return;
  }
  // Beside libsoup, which would copy the message into a frame of its own and send that in a later
  // turn of the main loop. Each of its own frames goes into the stream as a whole.
  const FrameHeader header(message.size());
  const auto pieces = message.pieces();
  // the header shall have no TLS record of its own
  std::vector<uint8_t> start(header.bytes().begin(), header.bytes().end());
  start.insert(start.end(), pieces.front().begin(), pieces.front().end());
  std::vector<GOutputVector> frame{{start.data(), start.size()}};
  for (const auto piece : pieces | std::views::drop(1)) {
    frame.push_back({piece.data(), piece.size()});
  }
  if (!sendPieces(_stream.get(), frame)) end();
}

void Connection::close(uint16_t code, const char* reason) {
  if (soup_websocket_connection_get_state(_socket.get()) == SOUP_WEBSOCKET_STATE_OPEN) {
    soup_websocket_connection_close(_socket.get(), code, reason);
  }
  end();
}

void Connection::takeMessage(SoupWebsocketDataType type, GBytes* message) {
  if (_ended) return;
  _silentTicks = 0;
  messageEnded(_stream.get());
  if (type != SOUP_WEBSOCKET_DATA_BINARY) {
    close(SOUP_WEBSOCKET_CLOSE_UNSUPPORTED_DATA, "messages are binary");
    return;
  }
  gsize size = 0;
  const auto* data = static_cast<const uint8_t*>(g_bytes_get_data(message, &size));
  if (size > kMaxMessage) {
    close(SOUP_WEBSOCKET_CLOSE_TOO_BIG, nullptr);
    return;
  }
  auto parsed = parseRequest(std::span(data, size));
  if (const auto* refusal = std::get_if<Refusal>(&parsed)) {
    close(static_cast<uint16_t>(*refusal), "not a request");
    return;
  }
  _events.request(*this, std::get<Request>(std::move(parsed)), size);
}

void Connection::takeError(const GError& error) {
  // libsoup ends such a connection without telling the peer why.
  if (g_error_matches(&error, SOUP_WEBSOCKET_ERROR, SOUP_WEBSOCKET_CLOSE_TOO_BIG) ||
      g_error_matches(&error, G_IO_ERROR, G_IO_ERROR_MESSAGE_TOO_LARGE)) {
    close(SOUP_WEBSOCKET_CLOSE_TOO_BIG, nullptr);
  } else if (g_error_matches(&error, SOUP_WEBSOCKET_ERROR, SOUP_WEBSOCKET_CLOSE_PROTOCOL_ERROR) ||
             g_error_matches(&error, SOUP_WEBSOCKET_ERROR, SOUP_WEBSOCKET_CLOSE_BAD_DATA)) {
    close(static_cast<uint16_t>(error.code), "broken protocol");
  } else {
    end();
  }
}

void Connection::countSilence() {
  if (++_silentTicks > kSilentTicksAllowed) {
    close(SOUP_WEBSOCKET_CLOSE_GOING_AWAY, "no sign of life");
  }
}

void Connection::end() {
  if (std::exchange(_ended, true)) return;
  _silenceWatch.reset();
  if (_events.ended) _events.ended(*this);
}

void enableTcpKeepalive(GSocket* socket) {
  const auto set = [socket](int level, int option, int value) {
    g_socket_set_option(socket, level, option, value, nullptr);
  };
  set(SOL_SOCKET, SO_KEEPALIVE, 1);
  set(IPPROTO_TCP, TCP_KEEPIDLE, 5);
  set(IPPROTO_TCP, TCP_KEEPINTVL, 5);
  set(IPPROTO_TCP, TCP_KEEPCNT, 3);
  set(IPPROTO_TCP, TCP_USER_TIMEOUT, 20'000);
}

}  // namespace tapdeck::standin
