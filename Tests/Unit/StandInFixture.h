#pragma once

#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <libsoup/soup.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Engine/Channels.h"
#include "Engine/StandardCodec.h"
#include "Platform/Linux/EngineProtocol/Protocol.h"
#include "Platform/Linux/EngineProtocol/SessionFile.h"
#include "Platform/Linux/StandInEngine/Certificate.h"
#include "Platform/Linux/StandInEngine/StandInEngine.h"
#include "Platform/Linux/Support/GLibOwners.h"
#include "Tests/Support/MainLoop.h"
#include "Tests/Support/Surroundings.h"

namespace tapdeck {

inline Value requestMessage(int64_t id, const std::string& channel, const MethodCall& call) {
  return Value(Value::List{Value(id), Value(channel), Value(codec::encodeMethodCall(call))});
}

/// What a reply's message carries.
inline Outcome outcomeOf(const Value& message) {
  const auto& payload = *(*message.getIf<Value::List>())[2].getIf<Value::Bytes>();
  return codec::decodeEnvelope(payload).value();
}

/// "mouseUp button=left", for a call whose arguments are strings.
inline std::string lineOf(const MethodCall& call) {
  std::string line = call.method;
  if (const auto* map = call.arguments.getIf<Value::Map>()) {
    for (const auto& [key, value] : *map) {
      line += " " + *key.getIf<std::string>() + "=" + *value.getIf<std::string>();
    }
  }
  return line;
}

/// A TCP connection that says exactly what the test says.
class RawClient {
 public:
  explicit RawClient(uint16_t port) : _socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::connect(_socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ::fcntl(_socket, F_SETFL, O_NONBLOCK);
  }
  RawClient(const RawClient&) = delete;
  RawClient& operator=(const RawClient&) = delete;
  ~RawClient() { ::close(_socket); }

  /// Writes all of it, running the main context meanwhile; false once the other side is gone.
  bool write(const std::string& bytes) {
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
  bool read() {
    std::vector<char> buffer(1024 * 1024);
    for (;;) {
      const auto count = ::recv(_socket, buffer.data(), buffer.size(), 0);
      if (count < 0) return errno == EAGAIN;
      if (count == 0) return false;
      _received.append(buffer.data(), static_cast<size_t>(count));
    }
  }
  const std::string& received() const { return _received; }

 private:
  int _socket;
  std::string _received;
};

/// A page's connection, by libsoup's own client.
class Page {
 public:
  /// Over TLS only the certificate of that fingerprint is accepted.
  explicit Page(const std::string& url, std::string fingerprint = "")
      : _fingerprint(std::move(fingerprint)),
        _session(
            SOUP_SESSION(g_object_new(SOUP_TYPE_SESSION, "proxy-resolver", nullptr, nullptr))) {
    const glib::Object<SoupMessage> message(soup_message_new("GET", url.c_str()));
    const auto accept = +[](SoupMessage*, GTlsCertificate* certificate, GTlsCertificateFlags,
                            gpointer data) -> gboolean {
      return standin::fingerprintOf(certificate) == static_cast<Page*>(data)->_fingerprint;
    };
    g_signal_connect(message.get(), "accept-certificate", G_CALLBACK(accept), this);
    char* subprotocols[] = {const_cast<char*>(standin::kSubprotocol), nullptr};
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
  ~Page() {
    if (_socket) g_signal_handlers_disconnect_by_data(_socket.get(), this);
  }

  bool isOpen() const {
    return _socket &&
           soup_websocket_connection_get_state(_socket.get()) == SOUP_WEBSOCKET_STATE_OPEN;
  }
  void send(const codec::Bytes& message) {
    soup_websocket_connection_send_binary(_socket.get(), message.data(), message.size());
  }
  void sendText(const char* text) { soup_websocket_connection_send_text(_socket.get(), text); }
  void call(int64_t id, const std::string& channel, const MethodCall& call) {
    send(codec::encodeMessage(requestMessage(id, channel, call)));
  }
  /// Calls, and gives what the next message says came of it.
  Outcome ask(const std::string& channel, const MethodCall& asked) {
    const size_t before = _messages.size();
    call(1, channel, asked);
    EXPECT_TRUE(waitForMessages(before + 1));
    return outcomeOf(_messages.at(before));
  }
  bool waitForMessages(size_t count) const {
    return eventually([&] { return _messages.size() >= count; });
  }
  int waitForClose() {
    return eventually([&] { return _closed; })
               ? soup_websocket_connection_get_close_code(_socket.get())
               : 0;
  }
  void close() {
    soup_websocket_connection_close(_socket.get(), SOUP_WEBSOCKET_CLOSE_NORMAL, nullptr);
  }
  void vanish() {
    g_io_stream_close(soup_websocket_connection_get_io_stream(_socket.get()), nullptr, nullptr);
  }

  const std::vector<Value>& messages() const { return _messages; }

 private:
  std::string _fingerprint;
  glib::Object<SoupSession> _session;
  glib::Object<SoupWebsocketConnection> _socket;
  std::vector<Value> _messages;
  bool _closed = false;
};

/// An engine on a free port of 127.0.0.1, with a runtime directory of its own.
class StandInTest : public testing::Test {
 protected:
  static constexpr const char* kControl = kControlChannel;
  static inline const std::string kProtocol =
      std::string("Sec-WebSocket-Protocol: ") + standin::kSubprotocol + "\r\n";
  /// The headers of a proper upgrade, but for Host and the subprotocol.
  static constexpr const char* kUpgrade =
      "Upgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Version: 13\r\n"
      "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n";

  StandInTest() { startEngine(); }

  void startEngine(std::chrono::milliseconds silenceLimit = std::chrono::seconds(25),
                   std::chrono::milliseconds pendingLimit = std::chrono::seconds(10)) {
    engine.reset();
    engine = StandInEngine::start({"127.0.0.1", 0, silenceLimit, pendingLimit, devicesFile()});
  }
  uint16_t port() const { return readSession().value().port; }
  std::string host() const { return "127.0.0.1:" + std::to_string(port()); }
  std::string enginePath() const { return "/engine?token=" + readSession().value().token; }
  std::string devicesFile() const { return runtimeDirectory.path / "devices.ini"; }
  /// By the run's token where no path is given.
  std::unique_ptr<Page> openPage(const std::string& path = "") {
    const size_t before = engine->peers().size();
    auto page = std::make_unique<Page>("ws://" + host() + (path.empty() ? enginePath() : path));
    EXPECT_TRUE(page->isOpen());
    EXPECT_TRUE(waitForPeers(before + 1));
    return page;
  }
  /// One request whose headers are given as lines, with the main context running; the whole
  /// response, or its head when the connection is upgraded.
  std::string exchange(const std::string& requestLine, const std::string& headers) const {
    RawClient client(port());
    EXPECT_TRUE(client.write(requestLine + " HTTP/1.1\r\n" + headers + "\r\n"));
    EXPECT_TRUE(eventually(
        [&] { return !client.read() || client.received().starts_with("HTTP/1.1 101"); }));
    return client.received();
  }
  bool waitForPeers(size_t count) const {
    return eventually([&] { return engine->peers().size() == count; });
  }
  /// Makes the control channel write down its calls ("mouseUp button=left") and answer null.
  void recordCalls() {
    engine->setMethodCallHandler(kControl, [this](const MethodCall& call, Reply reply) {
      calls.push_back(lineOf(call));
      reply.success();
    });
  }

  const TemporaryFolder runtimeDirectory;
  const EnvironmentVariable variable{"XDG_RUNTIME_DIR", runtimeDirectory.path.c_str()};
  // before the engine, whose end makes calls
  std::vector<std::string> calls;
  std::shared_ptr<StandInEngine> engine;
};

}  // namespace tapdeck
