#include <gmock/gmock.h>

#include "Tests/Unit/StandInFixture.h"

namespace tapdeck {
namespace {

using namespace ::testing;

constexpr size_t kMiB = 1024 * 1024;

/// A client's frame as RFC 6455 has it, masked with zeros.
std::string frame(int firstByte, const std::string& payload) {
  std::string bytes(1, static_cast<char>(firstByte));
  const size_t size = payload.size();
  if (size < 126) {
    bytes += static_cast<char>(0x80 | size);
  } else {
    bytes += static_cast<char>(0xff);
    for (int shift = 56; shift >= 0; shift -= 8) bytes += static_cast<char>(size >> shift);
  }
  return bytes + std::string(4, '\0') + payload;
}

class StandInLimits : public StandInTest {
 protected:
  /// A connection that holds the mouse button, on which nothing is read but what the test reads,
  /// and no ping is answered.
  std::unique_ptr<RawClient> openRaw() {
    auto client = openRawWithoutHolding();
    press(*client);
    return client;
  }
  std::unique_ptr<RawClient> openRawWithoutHolding() {
    recordCalls();
    auto client = std::make_unique<RawClient>(port());
    EXPECT_TRUE(client->write("GET " + enginePath() + " HTTP/1.1\r\nHost: " + host() + "\r\n" +
                              kUpgrade + kProtocol + "\r\n"));
    EXPECT_TRUE(eventually([&] { return client->read() && !client->received().empty(); }));
    EXPECT_THAT(client->received(), StartsWith("HTTP/1.1 101"));
    return client;
  }
  void press(RawClient& client) {
    const auto press = codec::encodeMessage(requestMessage(1, kControl, {"mouseDown", Value()}));
    EXPECT_TRUE(client.write(frame(0x82, {press.begin(), press.end()})));
    EXPECT_TRUE(eventually([&] { return calls.size() == 1; }));
  }
};

TEST_F(StandInLimits, MessageSize) {
  engine->setMethodCallHandler("c", [](const MethodCall&, Reply reply) { reply.success(); });
  const auto page = openPage();
  const auto messageOf = [](size_t textSize) {
    return codec::encodeMessage(requestMessage(1, "c", {"m", Value(std::string(textSize, 'x'))}));
  };
  const size_t rest = messageOf(kMiB / 2).size() - kMiB / 2;
  page->send(messageOf(kMiB - rest));
  EXPECT_TRUE(page->waitForMessages(1));
  page->send(messageOf(kMiB - rest + 1));
  EXPECT_EQ(page->waitForClose(), 1009);
  EXPECT_THAT(engine->peers(), IsEmpty());
}

TEST_F(StandInLimits, MessageInEndlessFragments) {
  const auto client = openRaw();
  ASSERT_TRUE(client->write(frame(0x02, "start")));
  const std::string fragment = frame(0x00, std::string(100'000, 'x'));
  // Pongs in between do not make room for more.
  const std::string pong = frame(0x8a, "");
  int sent = 0;
  while (sent < 64 && !engine->peers().empty() && client->write(fragment + pong)) ++sent;
  EXPECT_TRUE(waitForPeers(0));
  EXPECT_LT(sent, 64);
  EXPECT_THAT(calls, ElementsAre("mouseDown", "mouseUp button=left"));
}

TEST_F(StandInLimits, SlowReader) {
  // one that holds something would have to answer pings sooner
  const auto client = openRawWithoutHolding();

  // Below the bound everything arrives, however late.
  const Value mebibyte(codec::Bytes(kMiB, 'x'));
  for (int i = 0; i < 24; ++i) engine->invokeMethod("c", "m", mebibyte);
  engine->invokeMethod("c", "m", Value("the end"));
  ASSERT_THAT(engine->peers(), SizeIs(1));
  EXPECT_TRUE(
      eventually([&] { return client->read() && client->received().ends_with("the end"); }));
  EXPECT_GT(client->received().size(), 24 * kMiB);

  press(*client);
  // Beyond it the connection ends there and then. The kernel's buffers take some before.
  int sent = 0;
  for (; sent < 64 && !engine->peers().empty(); ++sent) engine->invokeMethod("c", "m", mebibyte);
  EXPECT_GE(sent, 32);
  EXPECT_LT(sent, 64);
  EXPECT_THAT(calls, ElementsAre("mouseDown", "mouseUp button=left"));
  EXPECT_TRUE(eventually([&] { return !client->read(); }));
}

TEST_F(StandInLimits, NothingIsSentToAPeerThatIsGone) {
  int complaints = 0;
  const GLogFunc count = [](const char*, GLogLevelFlags, const char*, gpointer data) {
    ++*static_cast<int*>(data);
  };
  const guint handler = g_log_set_handler("libsoup", G_LOG_LEVEL_CRITICAL, count, &complaints);
  openRawWithoutHolding().reset();
  EXPECT_TRUE(eventually([&] {
    g_main_context_iteration(nullptr, FALSE);
    engine->invokeMethod("c", "m", Value());
    return engine->peers().empty();
  }));
  g_log_remove_handler("libsoup", handler);
  EXPECT_EQ(complaints, 0);
}

TEST_F(StandInLimits, SilentPeer) {
  startEngine(std::chrono::milliseconds(1500));
  // libsoup's client answers pings; the raw one does not.
  const auto page = openPage();
  const auto client = openRaw();
  ASSERT_TRUE(waitForPeers(1));
  EXPECT_THAT(calls, ElementsAre("mouseDown", "mouseUp button=left"));
  EXPECT_TRUE(eventually(
      [&] { return client->read() && client->received().ends_with("no sign of life"); }));
  EXPECT_TRUE(page->isOpen());
}

TEST_F(StandInLimits, SilentPeerThatHolds) {
  const auto client = openRaw();
  const auto start = std::chrono::steady_clock::now();
  ASSERT_TRUE(waitForPeers(0));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(15));
  EXPECT_THAT(calls, ElementsAre("mouseDown", "mouseUp button=left"));
}

TEST_F(StandInLimits, BrokenFramesAreAnsweredWithTheReason) {
  const std::pair<std::string, int> cases[] = {
      {frame(0x83, "reserved opcode"), 1002},
      {std::string("\x82\x01x", 3), 1002},
      {frame(0x81, "\xff"), 1007},
  };
  for (const auto& [bytes, code] : cases) {
    const auto client = openRaw();
    ASSERT_TRUE(client->write(bytes));
    const std::string wanted = {static_cast<char>(code >> 8), static_cast<char>(code)};
    const auto said = [&] { return client->received().find(wanted) != std::string::npos; };
    EXPECT_TRUE(eventually([&] { return !client->read() || said(); }));
    EXPECT_TRUE(said()) << code;
    calls.clear();
  }
}

}  // namespace
}  // namespace tapdeck
