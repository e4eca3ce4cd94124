#include <cmath>
#include <limits>

#include "Runner/Input/Pointer.h"
#include "Tests/Unit/HostTest.h"

namespace tapdeck {
namespace {

class PointerTest : public HostTest {
 protected:
  PointerTest() {
    attach({screen(1, {{0, 0}, {1440, 900}})});
    pointerAt(100, 200);
    window->_isAccessibilityTrusted = true;
  }
  Value move(double dx, double dy) { return reply("moveMouse", "dx", dx, "dy", dy); }
  void withButton(const char* method, const char* button) { reply(method, "button", button); }
};

TEST_F(PointerTest, MovesByWholePointsAndCarriesTheRest) {
  for (int i = 0; i < 3; ++i) EXPECT_EQ(move(0.3, 0), kNull);
  EXPECT_THAT(trace(), IsEmpty());
  move(0.3, 0);
  EXPECT_THAT(trace(), ElementsAre(mouse(5, 101, 200)));
  EXPECT_NEAR(window->_fractionalX, 0.2, 1e-9);

  move(-0.2, -0.6);
  move(0, -0.6);
  EXPECT_THAT(trace(), ElementsAre(mouse(5, 100, 199)));
  EXPECT_NEAR(window->_fractionalY, -0.2, 1e-9);
}

TEST_F(PointerTest, StaysOnTheDisplays) {
  move(5000, 0);
  move(-101, 5000);
  EXPECT_THAT(trace(), ElementsAre(mouse(5, 1439, 200), mouse(5, 0, 899)));
}

TEST_F(PointerTest, AnAccumulatedDistanceMustBeAnInteger) {
  for (const double bad : {std::nan(""), std::numeric_limits<double>::infinity(), -1e19}) {
    EXPECT_DEATH(move(bad, 0), "❌ pointer movement along x (nan|inf|-1.*e\\+19|-1[0-9]+) ");
  }
  EXPECT_DEATH(move(0, 1e19), "❌ pointer movement along y ");
  script().trusted = false;
  window->_isAccessibilityTrusted = false;
  window->_accessibilityPromptShown = true;
  EXPECT_EQ(move(std::nan(""), 0), kNull) << "the gate comes first";
}

TEST_F(PointerTest, AbsoluteMovesGoToFractionsAndForgetTheRest) {
  attach({screen(1, {{0, 0}, {1440, 900}}), screen(2, {{-1000, 0}, {1000, 500}})});
  move(0.5, 0.5);
  const auto to = [&](double x, double y, const Value& display) {
    return reply("moveMouseAbs", "x", x, "y", y, "display", display);
  };
  EXPECT_EQ(to(1, 1, Value("2")), kNull);
  EXPECT_EQ(window->_fractionalX, 0);
  EXPECT_EQ(window->_fractionalY, 0);
  to(0.25, 0.5, Value("1"));
  to(0, 0, kNull);  // the desktop's corner belongs to no display
  EXPECT_THAT(trace(), ElementsAre(mouse(5, -1, 899), mouse(5, 360, 450), mouse(5, -1000, 400)));
  script().screens.clear();
  EXPECT_EQ(to(0.5, 0.5, kNull), kNull);
  EXPECT_THAT(trace(), IsEmpty());
}

TEST_F(PointerTest, ClicksCountWithinTheUsersInterval) {
  const auto clickAt = [&](double uptime, const char* button) {
    script().uptime = uptime;
    withButton("click", button);
    return window->_clickCount;
  };
  EXPECT_EQ(clickAt(100, "left"), 1);
  EXPECT_EQ(clickAt(100.5, "left"), 2) << "exactly the interval still counts";
  EXPECT_EQ(clickAt(101, "left"), 3);
  EXPECT_EQ(clickAt(101.1, "right"), 1);
  EXPECT_EQ(clickAt(101.2, "left"), 1);
  EXPECT_EQ(clickAt(101.8, "left"), 1);
  const Trace posted = trace();
  ASSERT_EQ(posted.size(), 12u);
  EXPECT_EQ(posted[5], mouse(2, 100, 200, 0, 3));
  EXPECT_EQ(posted[6], mouse(3, 100, 200, 1, 1));

  reply("doubleClick");
  EXPECT_THAT(trace(), ElementsAre(mouse(1, 100, 200, 0, 1), mouse(2, 100, 200, 0, 1),
                                   mouse(1, 100, 200, 0, 2), mouse(2, 100, 200, 0, 2)));
  EXPECT_EQ(clickAt(101.9, "left"), 2) << "a double click leaves the history alone";
}

TEST_F(PointerTest, AMiddleClickIsALeftOneButAMiddlePressIsNot) {
  withButton("click", "middle");
  withButton("mouseDown", "middle");
  move(1, 0);
  withButton("mouseUp", "center");
  withButton("click", "Right");
  EXPECT_THAT(trace(), ElementsAre(mouse(1, 100, 200, 0, 1), mouse(2, 100, 200, 0, 1),
                                   mouse(25, 100, 200, 2, 0, "none"), mouse(27, 101, 200, 2),
                                   mouse(26, 100, 200, 2, 0, "none"), mouse(1, 100, 200, 0, 1),
                                   mouse(2, 100, 200, 0, 1)));
}

TEST_F(PointerTest, AHeldButtonTurnsMovesIntoDrags) {
  withButton("mouseDown", "right");
  move(1, 1);
  reply("mouseDown");  // replaces the held name, releases nothing
  move(1, 1);
  EXPECT_EQ(window->_heldMouseButton, "left");
  withButton("mouseUp", "right");  // another name clears it all the same
  move(1, 1);
  reply("mouseUp", "button", 5);
  EXPECT_THAT(trace(), ElementsAre(mouse(3, 100, 200, 1, 0, "none"), mouse(7, 101, 201, 1),
                                   mouse(1, 100, 200, 0, 0, "none"), mouse(6, 101, 201),
                                   mouse(4, 100, 200, 1, 0, "none"), mouse(5, 101, 201),
                                   mouse(2, 100, 200, 0, 0, "none")));
}

TEST_F(PointerTest, WhatCannotBeMadeIsLeftOut) {
  script().failingEvents = {kCGEventMouseMoved, kCGEventLeftMouseDown};
  move(1, 0);
  withButton("click", "left");
  reply("mouseDown");
  EXPECT_THAT(trace(), ElementsAre("warp to (101,200)", mouse(2, 100, 200, 0, 1)));
  EXPECT_EQ(window->_heldMouseButton, "left");
  script().failingEvents.clear();
  script().sourceFails = true;
  move(1, 0);
  withButton("click", "left");
  reply("doubleClick");
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_EQ(window->_clickCount, 2);
  reply("mouseUp");
  EXPECT_THAT(trace(), ElementsAre(mouse(2, 100, 200, 0, 0, "none")));
}

TEST_F(PointerTest, TheCursorIsReportedInFractionsOfADisplay) {
  attach({screen(1, {{0, 0}, {1000, 500}}), screen(2, {{-200, 500}, {200, 100}})});
  const auto cursor = [&](double x, double y, const Value& display) {
    pointerAt(x, y, 500);
    return reply("screenCursor", "display", display);
  };
  const auto at = [](double x, double y, bool on) {
    return Value(mapOf("x", x, "y", y, "onDisplay", on));
  };
  const Value nowhere(mapOf("onDisplay", false));
  EXPECT_EQ(cursor(250, 125, kNull), at(0.25, 0.25, true));
  EXPECT_EQ(cursor(1000, 0, Value(7)), at(1, 0, true)) << "the edges count";
  EXPECT_EQ(cursor(-1, 250, Value("")), at(0, 0.5, false));
  EXPECT_EQ(cursor(-150, -25, Value("2")), at(0.25, 0.75, true));
  EXPECT_EQ(cursor(0, 0, Value("3")), nowhere);
  for (const CGSize flat : {CGSize{10, 0}, {0, 10}}) {
    script().bounds[2].size = flat;
    EXPECT_EQ(cursor(0, 0, Value("2")), nowhere);
  }
  script().eventLocation.reset();
  EXPECT_EQ(reply("screenCursor"), at(0, 0, true));
}

TEST_F(PointerTest, WarpsToAPointOrToTheMainScreensMiddle) {
  reply("debugWarp", "x", -9000, "y", 12.5);
  reply("debugWarp", "x", 3);
  EXPECT_THAT(trace(), ElementsAre("warp to (-9000,12.5)"));
  script().mainScreen = screen(2, {{1440, 100}, {1000, 600}});
  reply("debugWarp", "x", 3, "y", "4");
  EXPECT_THAT(trace(), ElementsAre("warp to (1940,500)"));
}

}  // namespace
}  // namespace tapdeck
