#pragma once

#include <gtest/gtest.h>
#include <libsoup/soup.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Engine/StandardCodec.h"
#include "Platform/Linux/EngineProtocol/SessionFile.h"
#include "Platform/Linux/StandInEngine/Handles.h"
#include "Platform/Linux/StandInEngine/StandInEngine.h"
#include "Tests/Support/MainLoop.h"
#include "Tests/Support/Surroundings.h"

namespace tapdeck {

/// A TCP connection that says exactly what the test says.
class RawClient {
 public:
  explicit RawClient(uint16_t port);
  RawClient(const RawClient&) = delete;
  RawClient& operator=(const RawClient&) = delete;
  ~RawClient();

  /// Writes all of it, running the main context meanwhile; false once the other side is gone.
  bool write(const std::string& bytes);
  bool read();
  const std::string& received() const { return _received; }

 private:
  int _socket;
  std::string _received;
};

/// A page's connection, by libsoup's own client.
class Page {
 public:
  /// Over TLS only the certificate of that fingerprint is accepted.
  explicit Page(const std::string& url, std::string fingerprint = "");
  ~Page();

  bool isOpen() const;
  void send(const codec::Bytes& message);
  void sendText(const char* text) { soup_websocket_connection_send_text(_socket.get(), text); }
  void call(int64_t id, const std::string& channel, const MethodCall& call);
  /// Calls, and gives what the next message says came of it.
  Outcome ask(const std::string& channel, const MethodCall& call);
  bool waitForMessages(size_t count) const {
    return eventually([&] { return _messages.size() >= count; });
  }
  int waitForClose();
  void close();
  void vanish();

  const std::vector<Value>& messages() const { return _messages; }

 private:
  std::string _fingerprint;
  standin::Object<SoupSession> _session;
  standin::Object<SoupWebsocketConnection> _socket;
  std::vector<Value> _messages;
  bool _closed = false;
};

/// An engine on a free port of 127.0.0.1, with a runtime directory of its own.
class StandInTest : public testing::Test {
 protected:
  static constexpr const char* kControl = "com.tapdeck/control";
  static constexpr const char* kProtocol = "Sec-WebSocket-Protocol: tapdeck.engine.v1\r\n";
  /// The headers of a proper upgrade, but for Host and the subprotocol.
  static constexpr const char* kUpgrade =
      "Upgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Version: 13\r\n"
      "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n";

  StandInTest() { startEngine(); }

  void startEngine(std::chrono::milliseconds silenceLimit = std::chrono::seconds(25),
                   std::chrono::milliseconds pendingLimit = std::chrono::seconds(10));
  uint16_t port() const { return readSession().value().port; }
  std::string host() const { return "127.0.0.1:" + std::to_string(port()); }
  std::string enginePath() const { return "/engine?token=" + readSession().value().token; }
  std::string devicesFile() const { return runtimeDirectory.path / "devices.ini"; }
  /// By the run's token where no path is given.
  std::unique_ptr<Page> openPage(const std::string& path = "");
  /// One request whose headers are given as lines, with the main context running; the whole
  /// response, or its head when the connection is upgraded.
  std::string exchange(const std::string& requestLine, const std::string& headers) const;
  bool waitForPeers(size_t count) const {
    return eventually([&] { return engine->peers().size() == count; });
  }
  /// Makes the control channel write down its calls ("mouseUp button=left") and answer null.
  void recordCalls();

  const TemporaryFolder runtimeDirectory;
  const EnvironmentVariable variable{"XDG_RUNTIME_DIR", runtimeDirectory.path.c_str()};
  // before the engine, whose end makes calls
  std::vector<std::string> calls;
  std::shared_ptr<StandInEngine> engine;
};

/// What a reply's message carries.
Outcome outcomeOf(const Value& message);

/// "mouseUp button=left", for a call whose arguments are strings.
std::string lineOf(const MethodCall& call);

Value requestMessage(int64_t id, const std::string& channel, const MethodCall& call);

}  // namespace tapdeck
