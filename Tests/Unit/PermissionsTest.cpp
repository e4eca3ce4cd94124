#include "Tests/Unit/HostTest.h"

namespace tapdeck {
namespace {

using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

constexpr const char* kPromptLine =
    "❌ App not trusted for Accessibility — prompting user to grant permission\n";

class PermissionsTest : public HostTest {
 protected:
  PermissionsTest() {
    attach({screen(1, {{0, 0}, {1440, 900}})});
    pointerAt(100, 100);
  }
  void move() { reply("moveMouse", "dx", 1, "dy", 0); }
};

TEST_F(PermissionsTest, TheGatePromptsOnceAndLetsNothingThrough) {
  script().trusted = false;
  script().trustedOnPrompt = true;  // the prompt's own answer does not open the gate
  CaptureStdout();
  move();
  reply("moveMouseAbs", "x", 0.5, "y", 0.5);
  move();
  EXPECT_EQ(GetCapturedStdout(), kPromptLine);
  EXPECT_THAT(trace(),
              ElementsAre("ask for trust", "prompt for trust", "ask for trust", "ask for trust"));
  EXPECT_FALSE(window->_isAccessibilityTrusted);
  EXPECT_EQ(window->_fractionalX, 0);

  script().trusted = true;
  move();
  move();
  EXPECT_THAT(trace(), ElementsAre("ask for trust", mouse(5, 101, 100), mouse(5, 101, 100)));
}

TEST_F(PermissionsTest, WithdrawnTrustIsSeenOnlyByTheQuestion) {
  move();
  script().trusted = false;
  move();
  EXPECT_THAT(trace(), ElementsAre("ask for trust", mouse(5, 101, 100), mouse(5, 101, 100)));
  EXPECT_EQ(reply("isAccessibilityTrusted"), Value(false));
  EXPECT_FALSE(window->_isAccessibilityTrusted);
  CaptureStdout();
  move();
  EXPECT_EQ(GetCapturedStdout(), kPromptLine);
  EXPECT_THAT(trace(), ElementsAre("ask for trust", "ask for trust", "prompt for trust"));
}

TEST_F(PermissionsTest, RequestingPromptsEachTimeAndInTheGatesPlace) {
  script().trusted = false;
  EXPECT_EQ(reply("requestAccessibilityPermission"), Value(false));
  EXPECT_EQ(reply("requestAccessibilityPermission"), Value(false));
  CaptureStdout();
  move();
  EXPECT_EQ(GetCapturedStdout(), "");
  EXPECT_THAT(trace(), ElementsAre("ask for trust", "prompt for trust", "ask for trust",
                                   "prompt for trust", "ask for trust"));

  script().trustedOnPrompt = true;
  EXPECT_EQ(reply("requestAccessibilityPermission"), Value(true));
  EXPECT_TRUE(window->_isAccessibilityTrusted);
}

TEST_F(PermissionsTest, ClicksAndScrollsPassWithoutTrust) {
  script().trusted = false;
  reply("click", "button", "left");
  const auto scroll = [&](const char* method, const auto& amount, int direction) {
    reply(method, "amount", amount, "direction", direction);
  };
  scroll("scroll", 3, 0);
  scroll("scroll", int64_t{2147483648}, 0);
  scroll("scroll", -INT32_MAX, 0);
  scroll("scroll", INT32_MAX, 1);
  scroll("scrollHorizontal", 5.0, 1);
  scroll("scroll", 2.5, 1);
  EXPECT_THAT(trace(), ElementsAre(mouse(1, 100, 100, 0, 1), mouse(2, 100, 100, 0, 1),
                                   "post scroll unit 0 count 1 wheels -3 0 0 source none",
                                   "post scroll unit 0 count 1 wheels -2147483648 0 0 source none",
                                   "post scroll unit 0 count 1 wheels 2147483647 0 0 source none",
                                   "post scroll unit 0 count 1 wheels 2147483647 0 0 source none",
                                   "post scroll unit 0 count 2 wheels 0 5 0 source none"));
  EXPECT_DEATH(scroll("scroll", int64_t{2147483648}, 1), "❌ .*2147483648");
  EXPECT_DEATH(scroll("scrollHorizontal", INT64_MIN, 0), "❌ .*-9223372036854775808");
}

TEST_F(PermissionsTest, ScreenRecordingIsAskedAfreshAndPanesAreOpened) {
  EXPECT_EQ(reply("screenPermissionGranted"), Value(true));
  script().captureGranted = false;
  EXPECT_EQ(reply("screenPermissionGranted"), Value(false));
  EXPECT_EQ(reply("requestScreenPermission"), Value(false));
  reply("openAccessibilitySettings");
  EXPECT_THAT(
      trace(),
      ElementsAre(
          "preflight screen capture", "preflight screen capture", "request screen capture",
          "open x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility"));
  script().urlsParse = false;
  reply("openScreenRecordingSettings");
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_DEATH(reply("openAccessibilitySettings"), "Privacy_Accessibility");
}

TEST_F(PermissionsTest, TheSandboxIsKnownByItsVariableAlone) {
  script().environment["APP_SANDBOX_CONTAINER_ID"] = "";
  EXPECT_EQ(reply("supportsWindowMove"), Value(false));
  EXPECT_EQ(reply("supportsNowPlaying"), Value(false));
}

}  // namespace
}  // namespace tapdeck
