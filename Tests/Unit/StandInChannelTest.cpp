#include <gmock/gmock.h>

#include <optional>

#include "Tests/Unit/StandInFixture.h"

namespace tapdeck {
namespace {

using namespace ::testing;

Value replyMessage(int64_t id, const std::string& channel, const Outcome& outcome) {
  const auto envelope = codec::encodeEnvelope(outcome);
  return Value(Value::List{Value(id), Value(channel), envelope ? Value(*envelope) : Value()});
}

using StandInChannel = StandInTest;

TEST_F(StandInChannel, CallsAndReplies) {
  std::vector<MethodCall> received;
  std::vector<Reply> kept;
  engine->setMethodCallHandler("c", [&](const MethodCall& call, Reply reply) {
    received.push_back(call);
    if (call.method == "later") {
      kept.push_back(std::move(reply));
    } else if (call.method == "fail") {
      reply.error("CODE", "text", Value("details"));
    } else {
      reply.success(call.arguments);
    }
  });
  const auto page = openPage();
  const Value arguments(ValueMap{{"x", Value(1.5)}, {"text", Value("ü")}});
  page->call(7, "c", {"later", Value()});
  page->call(int64_t{1} << 40, "c", {"echo", arguments});
  page->call(9, "c", {"fail", Value()});
  page->call(10, "nobody", {"echo", Value()});
  ASSERT_TRUE(page->waitForMessages(3));
  kept.front().notImplemented();
  ASSERT_TRUE(page->waitForMessages(4));
  EXPECT_THAT(page->messages(),
              ElementsAre(replyMessage(int64_t{1} << 40, "c", arguments),
                          replyMessage(9, "c", MethodError{"CODE", "text", Value("details")}),
                          replyMessage(10, "nobody", NotImplemented{}),
                          replyMessage(7, "c", NotImplemented{})));
  EXPECT_EQ(received.at(1).arguments, arguments);
}

// A frame's length has three forms, and long byte arrays are pieces of their own in it.
TEST_F(StandInChannel, RepliesOfEverySizeArriveWhole) {
  std::vector<Value> values;
  for (const size_t middle : {size_t{110}, size_t{65520}}) {
    for (size_t size = middle - 20; size < middle + 20; ++size) {
      values.emplace_back(std::string(size, 'x'));
    }
  }
  Value::List icons;
  for (size_t i = 0; i < 40; ++i) {
    icons.emplace_back(Value::Bytes(std::vector<uint8_t>(4090 + i, static_cast<uint8_t>(i))));
    icons.emplace_back(static_cast<double>(i));
  }
  values.emplace_back(icons);
  values.emplace_back(ValueMap{{"jpeg", icons.back()}, {"bytes", icons.front()}});

  engine->setMethodCallHandler("c", [&](const MethodCall& call, Reply reply) {
    reply.success(values.at(static_cast<size_t>(*call.arguments.getIf<int64_t>())));
  });
  const auto page = openPage();
  for (size_t i = 0; i < values.size(); ++i) {
    page->call(1, "c", {"value", Value(static_cast<int64_t>(i))});
  }
  ASSERT_TRUE(page->waitForMessages(values.size()));
  for (size_t i = 0; i < values.size(); ++i) {
    EXPECT_TRUE(outcomeOf(page->messages()[i]) == Outcome(values[i])) << "of value " << i;
  }
}

TEST_F(StandInChannel, HostCallsReachEveryPage) {
  const auto first = openPage(), second = openPage();
  engine->invokeMethod(kControl, "displaysChanged", Value("now"));
  for (const auto* page : {first.get(), second.get()}) {
    ASSERT_TRUE(page->waitForMessages(1));
    EXPECT_THAT(page->messages(),
                ElementsAre(requestMessage(0, kControl, {"displaysChanged", Value("now")})));
  }
}

TEST_F(StandInChannel, PeersAreSeenToComeAndGo) {
  std::vector<size_t> counts;
  engine->observe([&] { counts.push_back(engine->peers().size()); });
  auto page = openPage();
  EXPECT_EQ(engine->peers().front().address, "127.0.0.1");
  auto other = openPage();
  page->close();
  ASSERT_TRUE(waitForPeers(1));
  other->vanish();
  ASSERT_TRUE(waitForPeers(0));
  EXPECT_THAT(counts, ElementsAre(1, 2, 1, 0));
}

TEST_F(StandInChannel, AChangeOfTheNetworkIsToldToo) {
  int told = 0;
  engine->observe([&told] { ++told; });
  const auto changeNetwork = [] {
    g_signal_emit_by_name(g_network_monitor_get_default(), "network-changed", TRUE);
  };
  changeNetwork();
  EXPECT_EQ(told, 1);
  engine->stop();
  changeNetwork();
  EXPECT_EQ(told, 1);
}

TEST_F(StandInChannel, BrokenProtocolEndsOnlyThatConnection) {
  recordCalls();
  const auto bystander = openPage();
  const Value good = requestMessage(1, kControl, {"click", Value()});
  const auto& parts = *good.getIf<Value::List>();
  const auto altered = [&](size_t index, Value value) {
    Value::List list = parts;
    list[index] = std::move(value);
    return codec::encodeMessage(Value(list));
  };
  codec::Bytes cut = codec::encodeMessage(good);
  cut.pop_back();
  const MethodCall oddKey{"keyDown", Value(ValueMap{{"key", Value(std::string(1000, 'k'))}})};
  const std::pair<codec::Bytes, int> cases[] = {
      {cut, 1007},
      {codec::encodeMessage(Value(Value::List{parts[0], parts[1]})), 1002},
      {altered(0, Value(0)), 1002},
      {altered(0, Value(1.0)), 1002},
      {altered(1, Value()), 1002},
      {altered(2, Value()), 1002},
      {altered(2, Value(codec::encodeMessage(Value(3)))), 1007},
      {codec::encodeMessage(requestMessage(1, kControl, oddKey)), 1008},
  };
  for (const auto& [message, code] : cases) {
    const auto page = openPage();
    page->send(message);
    // What comes after it is not looked at any more.
    page->call(2, kControl, {"click", Value()});
    EXPECT_EQ(page->waitForClose(), code) << testing::PrintToString(message);
  }
  const auto page = openPage();
  page->sendText("hello");
  EXPECT_EQ(page->waitForClose(), 1003);

  EXPECT_THAT(calls, IsEmpty());
  EXPECT_THAT(engine->peers(), SizeIs(1));
  EXPECT_TRUE(bystander->isOpen());
}

TEST_F(StandInChannel, LateRepliesAreHarmless) {
  std::vector<Reply> kept;
  engine->setMethodCallHandler(
      "c", [&](const MethodCall&, Reply reply) { kept.push_back(std::move(reply)); });
  auto page = openPage();
  page->call(1, "c", {"a", Value()});
  page->call(2, "c", {"b", Value()});
  ASSERT_TRUE(eventually([&] { return kept.size() == 2; }));
  page->vanish();
  ASSERT_TRUE(waitForPeers(0));
  kept[0].success(Value("late"));
  engine.reset();
  kept[1].success(Value("later"));
  EXPECT_THAT(page->messages(), IsEmpty());
}

TEST_F(StandInChannel, StopLetsGoAndSaysGoodbye) {
  recordCalls();
  const auto page = openPage();
  page->call(1, kControl, {"hideCursor", Value()});
  // a channel that only looks like it holds nothing
  page->call(2, "com.tapdeck/other", {"mouseDown", Value()});
  ASSERT_TRUE(page->waitForMessages(2));
  engine->stop();
  EXPECT_THAT(calls, ElementsAre("hideCursor", "showCursor"));
  EXPECT_THAT(engine->peers(), IsEmpty());
  EXPECT_EQ(page->waitForClose(), 1001);
  engine->stop();
}

TEST_F(StandInChannel, AHandlerMayEndTheEngine) {
  std::optional<Reply> kept;
  engine->setMethodCallHandler(kControl, [&](const MethodCall& call, Reply reply) {
    if (call.method == "mouseUp") calls.push_back("mouseUp");
    reply.success();
    engine.reset();
  });
  const auto page = openPage();
  page->call(1, kControl, {"mouseDown", Value()});
  page->call(2, kControl, {"mouseDown", Value()});
  EXPECT_EQ(page->waitForClose(), 1001);
  EXPECT_THAT(calls, ElementsAre("mouseUp"));
}

}  // namespace
}  // namespace tapdeck
