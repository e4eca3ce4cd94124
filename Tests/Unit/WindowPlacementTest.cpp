#include "Tests/Unit/HostTest.h"

namespace tapdeck {
namespace {

using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

class WindowPlacementTest : public HostTest {
 protected:
  WindowPlacementTest() {
    window->_isAccessibilityTrusted = true;
    attach({screen(1, {{0, 0}, {1440, 900}}), screen(2, {{-1920, 100}, {1920, 1080}})});
    // a menu bar above, a Dock to the left
    script().windows.visibleFrames = {{1, {{0, 0}, {1440, 875}}},
                                      {2, {{-1850, 100}, {1850, 1055}}}};
  }

  struct Effect {
    Trace calls;
    std::string said;
  };
  Effect effectOf(const std::string& display) {
    CaptureStdout();
    EXPECT_EQ(reply("moveWindowToDisplay", "display", display), Value());
    return {trace(), GetCapturedStdout()};
  }
};

TEST_F(WindowPlacementTest, PutsTheFocusedWindowInsideTheUsableCorner) {
  const Effect effect = effectOf("1");
  EXPECT_THAT(effect.calls, ElementsAre("window of application 321: AXPosition = (12,37)"));
  EXPECT_EQ(effect.said, "");
  EXPECT_THAT(effectOf("2").calls,
              ElementsAre("window of application 321: AXPosition = (-1838,-243)"));
}

TEST_F(WindowPlacementTest, LeavesFullScreenFirst) {
  script().windows.fullScreen = kCFBooleanTrue;
  EXPECT_THAT(effectOf("1").calls, ElementsAre("window of application 321: AXFullScreen = false",
                                               "window of application 321: AXPosition = (12,37)"));
  script().windows.fullScreen = nullptr;
  EXPECT_EQ(effectOf("1").calls.size(), 1U);
}

TEST_F(WindowPlacementTest, StopsWhereItCannotGoOn) {
  const auto unmoved = [&](const std::string& display, const std::string& said = "") {
    const Effect effect = effectOf(display);
    EXPECT_THAT(effect.calls, IsEmpty());
    EXPECT_EQ(effect.said, said);
    script().windows = {};
  };
  unmoved("screen-1", "⚠️ moveWindowToDisplay: unknown display screen-1\n");
  const std::string withNul("a\0b", 3);
  unmoved(withNul, "⚠️ moveWindowToDisplay: unknown display " + withNul + "\n");
  script().windows.frontmostProcess.reset();
  unmoved("1");
  script().windows.hasFocusedWindow = false;
  unmoved("1");
  script().windows.valueFails = true;
  unmoved("1");

  window->_isAccessibilityTrusted = false;
  window->_accessibilityPromptShown = true;
  script().trusted = false;
  EXPECT_EQ(effectOf("unknown").said, "");
  EXPECT_THAT(effectOf("1").calls, ElementsAre("ask for trust"));
}

TEST_F(WindowPlacementTest, SaysThatTheWindowRefused) {
  script().windows.positionError = kAXErrorCannotComplete;
  EXPECT_EQ(effectOf("1").said, "⚠️ moveWindowToDisplay: AX set position failed (-25204)\n");
}

}  // namespace
}  // namespace tapdeck
