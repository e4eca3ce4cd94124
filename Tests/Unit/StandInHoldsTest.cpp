#include <gmock/gmock.h>

#include "Platform/Linux/StandInEngine/Holds.h"

namespace tapdeck::standin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

MethodCall call(const std::string& method, const std::string& key = "",
                const std::string& value = "") {
  return {method, key.empty() ? Value() : Value(ValueMap{{key, Value(value)}})};
}

std::vector<std::string> endOf(Holds& holds, Holds::Connection connection) {
  std::vector<std::string> lines;
  for (const MethodCall& each : holds.end(connection)) {
    std::string line = each.method;
    if (const auto* map = each.arguments.getIf<Value::Map>()) {
      for (const auto& entry : *map) {
        line += " " + *entry.first.getIf<std::string>() + "=" + *entry.second.getIf<std::string>();
      }
    }
    lines.push_back(line);
  }
  return lines;
}

TEST(StandInHolds, LetsGoOfWhatIsLeftInOrder) {
  Holds holds;
  for (const auto& each :
       {call("showLaser"), call("keyDown", "key", "Shift"), call("keyDown", "key", "a"),
        call("mouseDown"), call("hideCursor"), call("keyDown", "key", "command"),
        call("keyUp", "key", "A"), call("mouseDown", "button", "Left"), call("keyDown")}) {
    ASSERT_TRUE(holds.note(1, each));
  }
  EXPECT_THAT(endOf(holds, 1),
              ElementsAre("mouseUp button=Left", "mouseUp button=left", "keyUp key=command",
                          "keyUp key=shift", "showCursor", "hideLaser"));
  EXPECT_THAT(endOf(holds, 1), IsEmpty());
}

TEST(StandInHolds, BalancedCallsLeaveNothing) {
  Holds holds;
  // Repeated presses are one; a button that is no string is the left one, as on the host.
  for (const auto& each :
       {call("mouseDown"), MethodCall{"mouseDown", Value(ValueMap{{"button", Value(2)}})},
        call("mouseUp", "button", "left"), call("keyDown", "key", "x"), call("keyDown", "key", "x"),
        call("keyUp", "key", "x"), call("showLaser"), call("hideLaser"), call("hideCursor"),
        call("showCursor"), call("click", "button", "left"), call("keyPress", "key", "y")}) {
    ASSERT_TRUE(holds.note(1, each));
  }
  EXPECT_THAT(endOf(holds, 1), IsEmpty());
}

TEST(StandInHolds, OtherConnections) {
  Holds holds;
  for (Holds::Connection connection : {1, 2}) {
    holds.note(connection, call("keyDown", "key", "shift"));
    holds.note(connection, call("mouseDown"));
  }
  holds.note(1, call("keyDown", "key", "a"));
  // 2 goes on holding both, and lets go itself.
  EXPECT_THAT(endOf(holds, 1), ElementsAre("keyUp key=a"));
  EXPECT_THAT(endOf(holds, 2), ElementsAre("mouseUp button=left", "keyUp key=shift"));

  // What another connection let go of is not let go of again.
  holds.note(1, call("mouseDown"));
  holds.note(2, call("mouseUp"));
  EXPECT_THAT(endOf(holds, 1), IsEmpty());
}

TEST(StandInHolds, IsBounded) {
  Holds holds;
  EXPECT_FALSE(holds.note(1, call("keyDown", "key", std::string(Holds::kLongestName + 1, 'k'))));
  for (size_t i = 0; i < Holds::kMostPerConnection; ++i) {
    ASSERT_TRUE(holds.note(1, call("keyDown", "key", std::to_string(i))));
  }
  EXPECT_FALSE(holds.note(1, call("keyDown", "key", "more")));
  EXPECT_TRUE(holds.note(1, call("keyDown", "key", "7")));
  EXPECT_TRUE(holds.note(2, call("keyDown", "key", "more")));
  EXPECT_EQ(holds.end(1).size(), Holds::kMostPerConnection);
}

}  // namespace
}  // namespace tapdeck::standin
