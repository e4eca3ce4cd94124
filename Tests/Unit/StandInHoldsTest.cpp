#include <gmock/gmock.h>

#include "Platform/Linux/StandInEngine/Holds.h"
#include "Tests/Unit/StandInFixture.h"

namespace tapdeck::standin {
namespace {

using namespace ::testing;

MethodCall call(const std::string& method, Value arguments = Value()) {
  return {method, std::move(arguments)};
}

MethodCall key(const std::string& method, const std::string& name) {
  return call(method, Value(ValueMap{{"key", Value(name)}}));
}

MethodCall button(const std::string& method, Value name) {
  return call(method, Value(ValueMap{{"button", std::move(name)}}));
}

void note(Holds& holds, ConnectionNumber connection, const std::vector<MethodCall>& calls) {
  for (const auto& each : calls) EXPECT_TRUE(holds.note(connection, each)) << each.method;
}

std::vector<std::string> endOf(Holds& holds, ConnectionNumber connection) {
  std::vector<std::string> lines;
  for (const MethodCall& each : holds.end(connection)) lines.push_back(lineOf(each));
  return lines;
}

TEST(StandInHolds, LetsGoOfWhatIsLeftInOrder) {
  Holds holds;
  note(holds, 1,
       {call("showLaser"), key("keyDown", "Shift"), key("keyDown", "a"), call("mouseDown"),
        call("hideCursor"), key("keyDown", "command"), key("keyUp", "A"),
        button("mouseDown", Value("Left")), call("keyDown")});
  EXPECT_THAT(endOf(holds, 1),
              ElementsAre("mouseUp button=Left", "mouseUp button=left", "keyUp key=command",
                          "keyUp key=shift", "showCursor", "hideLaser"));
  EXPECT_THAT(endOf(holds, 1), IsEmpty());

  // Repeated presses are one; a button that is no string is the left one, as on the host.
  note(holds, 1,
       {call("mouseDown"), button("mouseDown", Value(2)), button("mouseUp", Value("left")),
        key("keyDown", "x"), key("keyDown", "x"), key("keyUp", "x"), call("showLaser"),
        call("hideLaser"), call("hideCursor"), call("showCursor"), button("click", Value("left")),
        key("keyPress", "y")});
  EXPECT_THAT(endOf(holds, 1), IsEmpty());
}

TEST(StandInHolds, OtherConnections) {
  Holds holds;
  note(holds, 1, {key("keyDown", "shift"), call("mouseDown"), key("keyDown", "a")});
  note(holds, 2, {key("keyDown", "shift"), call("mouseDown")});
  // 2 goes on holding both, and lets go itself.
  EXPECT_THAT(endOf(holds, 1), ElementsAre("keyUp key=a"));
  EXPECT_THAT(endOf(holds, 2), ElementsAre("mouseUp button=left", "keyUp key=shift"));

  // What another connection let go of is not let go of again.
  note(holds, 1, {call("mouseDown")});
  note(holds, 2, {call("mouseUp")});
  EXPECT_THAT(endOf(holds, 1), IsEmpty());
}

TEST(StandInHolds, HidesOfTheCursorAreCounted) {
  const MethodCall hide = call("hideCursor");
  const MethodCall show = call("showCursor");
  Holds holds;
  note(holds, 2, {hide});
  note(holds, 1, {hide, hide, show, hide});
  EXPECT_THAT(endOf(holds, 1), ElementsAre("showCursor", "showCursor"));
  // Somebody else's show counts, one show too many does not.
  note(holds, 3, {hide, hide, hide, show});
  note(holds, 4, {show, show});
  note(holds, 5, {show, show});
  EXPECT_THAT(endOf(holds, 2), IsEmpty());
  EXPECT_THAT(endOf(holds, 3), IsEmpty());
  for (size_t i = 0; i < Holds::kMaxPerConnection; ++i) ASSERT_TRUE(holds.note(6, hide));
  EXPECT_FALSE(holds.note(6, hide));
}

TEST(StandInHolds, IsBounded) {
  Holds holds;
  EXPECT_FALSE(holds.note(1, key("keyDown", std::string(Holds::kMaxNameBytes + 1, 'k'))));
  for (size_t i = 0; i < Holds::kMaxPerConnection; ++i) {
    ASSERT_TRUE(holds.note(1, key("keyDown", std::to_string(i))));
  }
  EXPECT_FALSE(holds.note(1, key("keyDown", "more")));
  EXPECT_TRUE(holds.note(1, key("keyDown", "7")));
  EXPECT_TRUE(holds.note(2, key("keyDown", "more")));
  EXPECT_EQ(holds.end(1).size(), Holds::kMaxPerConnection);
}

}  // namespace
}  // namespace tapdeck::standin
