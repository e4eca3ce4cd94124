#include "Tests/Unit/StandInFixture.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "Platform/Linux/StandInEngine/Certificate.h"

namespace tapdeck {

RawClient::RawClient(uint16_t port) : _socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  EXPECT_EQ(::connect(_socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ::fcntl(_socket, F_SETFL, O_NONBLOCK);
}

RawClient::~RawClient() {
  ::close(_socket);
}

bool RawClient::write(const std::string& bytes) {
  size_t sent = 0;
  bool gone = false;
  const bool inTime = eventually([&] {
    const auto count = ::send(_socket, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (count >= 0) sent += static_cast<size_t>(count);
    gone = count < 0 && errno != EAGAIN;
    return gone || sent == bytes.size();
  });
  return inTime && !gone;
}

bool RawClient::read() {
  std::vector<char> buffer(1024 * 1024);
  for (;;) {
    const auto count = ::recv(_socket, buffer.data(), buffer.size(), 0);
    if (count < 0) return errno == EAGAIN;
    if (count == 0) return false;
    _received.append(buffer.data(), static_cast<size_t>(count));
  }
}

Value requestMessage(int64_t id, const std::string& channel, const MethodCall& call) {
  return Value(Value::List{Value(id), Value(channel), Value(codec::encodeMethodCall(call))});
}

Page::Page(const std::string& url, std::string fingerprint)
    : _fingerprint(std::move(fingerprint)),
      _session(SOUP_SESSION(g_object_new(SOUP_TYPE_SESSION, "proxy-resolver", nullptr, nullptr))) {
  const standin::Object<SoupMessage> message(soup_message_new("GET", url.c_str()));
  const auto accept = +[](SoupMessage*, GTlsCertificate* certificate, GTlsCertificateFlags,
                          gpointer data) -> gboolean {
    return standin::fingerprintOf(certificate) == static_cast<Page*>(data)->_fingerprint;
  };
  g_signal_connect(message.get(), "accept-certificate", G_CALLBACK(accept), this);
  char subprotocol[] = "tapdeck.engine.v1";
  char* subprotocols[] = {subprotocol, nullptr};
  struct Attempt {
    SoupWebsocketConnection* socket = nullptr;
    bool done = false;
  } attempt;
  soup_session_websocket_connect_async(
      _session.get(), message.get(), nullptr, subprotocols, G_PRIORITY_DEFAULT, nullptr,
      [](GObject* session, GAsyncResult* result, gpointer data) {
        auto* self = static_cast<Attempt*>(data);
        self->socket =
            soup_session_websocket_connect_finish(SOUP_SESSION(session), result, nullptr);
        self->done = true;
      },
      &attempt);
  EXPECT_TRUE(eventually([&] { return attempt.done; }));
  _socket.reset(attempt.socket);
  if (!_socket) return;
  soup_websocket_connection_set_max_incoming_payload_size(_socket.get(), 0);
  const auto received = +[](SoupWebsocketConnection*, int type, GBytes* bytes, gpointer data) {
    EXPECT_EQ(type, SOUP_WEBSOCKET_DATA_BINARY);
    gsize size = 0;
    const auto* content = static_cast<const uint8_t*>(g_bytes_get_data(bytes, &size));
    auto value = codec::decodeMessage(std::span(content, size));
    ASSERT_TRUE(value);
    static_cast<Page*>(data)->_messages.push_back(*std::move(value));
  };
  const auto closed =
      +[](SoupWebsocketConnection*, gpointer data) { static_cast<Page*>(data)->_closed = true; };
  g_signal_connect(_socket.get(), "message", G_CALLBACK(received), this);
  g_signal_connect(_socket.get(), "closed", G_CALLBACK(closed), this);
}

Page::~Page() {
  if (_socket) g_signal_handlers_disconnect_by_data(_socket.get(), this);
}

bool Page::isOpen() const {
  return _socket && soup_websocket_connection_get_state(_socket.get()) == SOUP_WEBSOCKET_STATE_OPEN;
}

void Page::send(const codec::Bytes& message) {
  soup_websocket_connection_send_binary(_socket.get(), message.data(), message.size());
}

void Page::call(int64_t id, const std::string& channel, const MethodCall& call) {
  send(codec::encodeMessage(requestMessage(id, channel, call)));
}

Outcome Page::ask(const std::string& channel, const MethodCall& asked) {
  const size_t before = _messages.size();
  call(1, channel, asked);
  EXPECT_TRUE(waitForMessages(before + 1));
  return outcomeOf(_messages.at(before));
}

Outcome outcomeOf(const Value& message) {
  const auto& payload = *(*message.getIf<Value::List>())[2].getIf<Value::Bytes>();
  return codec::decodeEnvelope(payload).value();
}

int Page::waitForClose() {
  return eventually([&] { return _closed; })
             ? soup_websocket_connection_get_close_code(_socket.get())
             : 0;
}

void Page::close() {
  soup_websocket_connection_close(_socket.get(), SOUP_WEBSOCKET_CLOSE_NORMAL, nullptr);
}

void Page::vanish() {
  g_io_stream_close(soup_websocket_connection_get_io_stream(_socket.get()), nullptr, nullptr);
}

void StandInTest::startEngine(std::chrono::milliseconds silenceLimit,
                              std::chrono::milliseconds pendingLimit) {
  engine.reset();
  engine = StandInEngine::start({"127.0.0.1", 0, silenceLimit, pendingLimit, devicesFile()});
}

std::unique_ptr<Page> StandInTest::openPage(const std::string& path) {
  const size_t before = engine->peers().size();
  auto page = std::make_unique<Page>("ws://" + host() + (path.empty() ? enginePath() : path));
  EXPECT_TRUE(page->isOpen());
  EXPECT_TRUE(waitForPeers(before + 1));
  return page;
}

std::string StandInTest::exchange(const std::string& requestLine,
                                  const std::string& headers) const {
  RawClient client(port());
  EXPECT_TRUE(client.write(requestLine + " HTTP/1.1\r\n" + headers + "\r\n"));
  EXPECT_TRUE(
      eventually([&] { return !client.read() || client.received().starts_with("HTTP/1.1 101"); }));
  return client.received();
}

void StandInTest::recordCalls() {
  engine->setMethodCallHandler(kControl, [this](const MethodCall& call, Reply reply) {
    calls.push_back(lineOf(call));
    reply.success();
  });
}

std::string lineOf(const MethodCall& call) {
  std::string line = call.method;
  if (const auto* map = call.arguments.getIf<Value::Map>()) {
    for (const auto& [key, value] : *map) {
      line += " " + *key.getIf<std::string>() + "=" + *value.getIf<std::string>();
    }
  }
  return line;
}

}  // namespace tapdeck
