#include "Tests/Unit/HostTest.h"

namespace tapdeck {
namespace {

class LaserPointerTest : public HostTest {
 protected:
  LaserPointerTest() { script().mouseLocation = {500, 300}; }
  Trace workOf(const std::string& method) {
    EXPECT_EQ(reply(method), Value());
    EXPECT_THAT(trace(), ElementsAre("async on main"));
    recording::runMainQueue();
    return trace();
  }
};

TEST_F(LaserPointerTest, IsOneDotThatFollowsThePointer) {
  EXPECT_THAT(
      workOf("showLaser"),
      ElementsAre("overlay 26x26 at 0,0 mask 0 radius 13 level 2147483628 behaviour 0x151 "
                  "click-through, "
                  "rgba(0 0 0 0) under rgba(0.78 0 0 1) at 0.85, "
                  "glow rgba(1 0 0 1) at 0.9 over 5 from 0,0",
                  "overlay to (487,287)", "overlay to the front", "timer every 0.0166667 s"));
  EXPECT_THAT(workOf("showLaser"), IsEmpty());
  script().mouseLocation = {20.5, -3};
  recording::fireTimers();
  EXPECT_THAT(trace(), ElementsAre("overlay to (7.5,-16)"));

  EXPECT_THAT(workOf("hideLaser"), ElementsAre("timer ended", "overlay out"));
  EXPECT_EQ(window->_laserWindow, nullptr);
  EXPECT_EQ(window->_laserTimer, nullptr);
  recording::fireTimers();
  EXPECT_THAT(workOf("hideLaser"), IsEmpty());
  EXPECT_EQ(workOf("showLaser").size(), 4U);
}

}  // namespace
}  // namespace tapdeck
