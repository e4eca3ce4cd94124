#include <gmock/gmock.h>

#include "Tests/Unit/StandInFixture.h"

namespace tapdeck {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

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
  /// An upgraded connection on which nothing is read but what the test reads, and no ping is
  /// answered.
  std::unique_ptr<RawClient> openRaw() {
    const size_t before = engine->peers().size();
    auto client = std::make_unique<RawClient>(port());
    EXPECT_TRUE(client->write("GET /engine?token=" + token() + " HTTP/1.1\r\nHost: " + host() +
                              "\r\n" + upgradeHeaders() +
                              "Sec-WebSocket-Protocol: tapdeck.engine.v1\r\n\r\n"));
    EXPECT_TRUE(waitUntil([&] { return client->read() && engine->peers().size() > before; }));
    EXPECT_THAT(client->received(), StartsWith("HTTP/1.1 101"));
    return client;
  }
  static std::string mouseDown() {
    const auto message = codec::encodeMessage(requestMessage(1, kControl, {"mouseDown", Value()}));
    return frame(0x82, std::string(message.begin(), message.end()));
  }
  bool waitUntilGone() {
    return waitUntil([&] { return engine->peers().empty(); });
  }
};

TEST_F(StandInLimits, MessageSize) {
  size_t longest = 0;
  engine->setMethodCallHandler("c", [&](const MethodCall& call, Reply reply) {
    longest = call.arguments.getIf<std::string>()->size();
    reply.success();
  });
  const auto page = openPage();
  const size_t frameOfCall =
      codec::encodeMessage(requestMessage(1, "c", {"m", Value(std::string(kMiB / 2, 'x'))}))
          .size() -
      kMiB / 2;
  page->call(1, "c", {"m", Value(std::string(kMiB - frameOfCall, 'x'))});
  ASSERT_TRUE(page->waitForMessages(1));
  EXPECT_EQ(longest, kMiB - frameOfCall);
  page->call(2, "c", {"m", Value(std::string(kMiB - frameOfCall + 1, 'x'))});
  EXPECT_EQ(page->waitForClose(), 1009);
  EXPECT_THAT(engine->peers(), IsEmpty());
}

TEST_F(StandInLimits, MessageInEndlessFragments) {
  recordCalls();
  const auto client = openRaw();
  ASSERT_TRUE(client->write(mouseDown()));
  ASSERT_TRUE(waitUntil([&] { return calls.size() == 1; }));
  ASSERT_TRUE(client->write(frame(0x02, "start")));
  const std::string fragment = frame(0x00, std::string(100'000, 'x'));
  // Pongs in between do not make room for more.
  const std::string pong = frame(0x8a, "");
  int sent = 0;
  while (sent < 64 && !engine->peers().empty() && client->write(fragment + pong)) ++sent;
  EXPECT_TRUE(waitUntilGone());
  // The kernel's buffers take some more than the engine does.
  EXPECT_LT(sent, 64);
  EXPECT_THAT(calls, ElementsAre("mouseDown", "mouseUp left"));
}

TEST_F(StandInLimits, SlowReader) {
  recordCalls();
  const auto client = openRaw();
  ASSERT_TRUE(client->write(mouseDown()));
  ASSERT_TRUE(waitUntil([&] { return calls.size() == 1; }));

  // Below the bound everything arrives, however late.
  const Value mebibyte(Value::Bytes(kMiB, 'x'));
  for (int i = 0; i < 24; ++i) engine->invokeMethod("c", "m", mebibyte);
  engine->invokeMethod("c", "m", Value("the end"));
  ASSERT_THAT(engine->peers(), SizeIs(1));
  EXPECT_TRUE(waitUntil([&] { return client->read() && client->received().ends_with("the end"); }));
  EXPECT_GT(client->received().size(), 24 * kMiB);

  // Beyond it the connection ends there and then. The kernel's buffers take some before.
  int sent = 0;
  for (; sent < 64 && !engine->peers().empty(); ++sent) engine->invokeMethod("c", "m", mebibyte);
  EXPECT_GE(sent, 32);
  EXPECT_LT(sent, 64);
  EXPECT_THAT(calls, ElementsAre("mouseDown", "mouseUp left"));
  client->readAll();
}

TEST_F(StandInLimits, SilentPeer) {
  startEngine(std::chrono::milliseconds(1500));
  recordCalls();
  // libsoup's client answers pings; the raw one does not.
  const auto page = openPage();
  const auto client = openRaw();
  ASSERT_TRUE(client->write(mouseDown()));
  ASSERT_TRUE(waitUntil([&] { return calls.size() == 1; }));
  ASSERT_TRUE(waitUntil([&] { return engine->peers().size() == 1; }));
  EXPECT_THAT(calls, ElementsAre("mouseDown", "mouseUp left"));
  EXPECT_TRUE(
      waitUntil([&] { return client->read() && client->received().ends_with("no sign of life"); }));
  EXPECT_TRUE(page->isOpen());
}

TEST_F(StandInLimits, TooMuchHeld) {
  recordCalls();
  const auto page = openPage();
  const MethodCall odd{"keyDown", Value(ValueMap{{"key", Value(std::string(1000, 'k'))}})};
  page->call(1, kControl, odd);
  EXPECT_EQ(page->waitForClose(), 1008);
  EXPECT_THAT(calls, IsEmpty());
}

}  // namespace
}  // namespace tapdeck
