#pragma once

#include <gtest/gtest.h>
#include <libsoup/soup.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Engine/StandardCodec.h"
#include "Platform/Linux/StandInEngine/Handles.h"
#include "Platform/Linux/StandInEngine/StandInEngine.h"

namespace tapdeck {

/// Runs the default main context until `done`; false after 10 seconds.
bool waitUntil(const std::function<bool()>& done);

/// A TCP connection that says exactly what the test says.
class RawClient {
 public:
  explicit RawClient(uint16_t port);
  RawClient(const RawClient&) = delete;
  RawClient& operator=(const RawClient&) = delete;
  ~RawClient();

  /// Writes all of it, running the main context meanwhile; false once the other side is gone.
  bool write(const std::string& bytes);
  /// Reads what is there; false at the end.
  bool read();
  /// Reads until the end.
  void readAll();
  const std::string& received() const { return _received; }

 private:
  int _socket;
  std::string _received;
};

/// A page's connection, by libsoup's own client.
class Page {
 public:
  Page(uint16_t port, const std::string& token);
  ~Page();

  bool isOpen() const;
  void send(const codec::Bytes& message);
  void sendText(const char* text);
  void call(int64_t id, const std::string& channel, const MethodCall& call);
  /// Runs the main context until that many messages have come.
  bool waitForMessages(size_t count);
  /// The close code, 0 when it does not come.
  int waitForClose();
  void close();
  /// Vanishes without a word.
  void vanish();

  const std::vector<Value>& messages() const { return _messages; }

 private:
  standin::Object<SoupSession> _session;
  standin::Object<SoupWebsocketConnection> _socket;
  std::vector<Value> _messages;
  bool _closed = false;
};

/// An engine on a free port of 127.0.0.1, with a runtime directory of its own.
class StandInTest : public testing::Test {
 protected:
  static constexpr const char* kControl = "com.tapdeck/control";

  void SetUp() override;
  void TearDown() override;

  void startEngine(std::chrono::milliseconds silenceLimit = std::chrono::seconds(25));
  uint16_t port() const;
  std::string token() const;
  std::string host() const { return "127.0.0.1:" + std::to_string(port()); }
  std::unique_ptr<Page> openPage();
  /// One request whose headers are given as lines; the whole response.
  std::string exchange(const std::string& requestLine, const std::string& headers);
  /// The headers of a proper upgrade.
  std::string upgradeHeaders() const;
  /// Makes the control channel write down its calls ("mouseUp left") and answer null.
  void recordCalls();

  std::filesystem::path runtimeDirectory;
  std::shared_ptr<StandInEngine> engine;
  std::vector<std::string> calls;
};

Value requestMessage(int64_t id, const std::string& channel, const MethodCall& call);

}  // namespace tapdeck
