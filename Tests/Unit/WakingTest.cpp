#include "Runner/Waking.h"
#include "Tests/Unit/HostTest.h"

namespace tapdeck {
namespace {

class WakingTest : public HostTest {};

TEST_F(WakingTest, GoesThroughItsStepsInOrder) {
  EXPECT_THAT(
      wakingTrace,
      ElementsAre("handle launch_at_startup", "register FilePickerPlugin",
                  "register FirebaseAnalyticsPlugin", "register FLTFirebaseCorePlugin",
                  "register FLTFirebaseCrashlyticsPlugin",
                  "register FlutterLocalNotificationsPlugin", "register FlutterPlatformAlertPlugin",
                  "register FlutterSecureStorageDarwinPlugin", "register LocalNotifierPlugin",
                  "register FPPPackageInfoPlusPlugin", "register ScreenRetrieverMacosPlugin",
                  "register SharePlusMacosPlugin", "register SharedPreferencesPlugin",
                  "register SystemTrayPlugin", "register TrayManagerPlugin",
                  "register UrlLauncherPlugin", "register WindowManagerPlugin",
                  std::string("handle ") + kControlChannel, "observe screen parameters"));
}

TEST_F(WakingTest, GoesOnPastAPluginThatTheBuildLacks) {
  const auto bare = std::make_shared<recording::RecordingEngine>();
  bare->absentPlugins = {"FilePickerPlugin", "WindowManagerPlugin"};
  wakeMainWindow(std::make_shared<MainFlutterWindow>(), bare);
  const Trace steps = trace();
  ASSERT_EQ(steps.size(), wakingTrace.size());
  EXPECT_EQ(steps[1], "without FilePickerPlugin");
  EXPECT_EQ(steps[16], "without WindowManagerPlugin");
}

TEST_F(WakingTest, TellsTheEngineOfEachDisplayChange) {
  attach({screen(7, {{0, 0}, {1440, 900}}, 2.0)});
  recording::notifyScreenParameters();
  EXPECT_THAT(trace(), ElementsAre(std::string("invoke displaysChanged on ") + kControlChannel));
  EXPECT_EQ(engine->lastInvocation, reply("getDisplays"));

  window->_controlChannel.reset();
  recording::notifyScreenParameters();
  window.reset();
  recording::notifyScreenParameters();
  EXPECT_THAT(trace(), IsEmpty());
}

TEST_F(WakingTest, KeepsTheSystemFromSlowingItDownUntilMinutesAfterTheLastCall) {
  const auto begun = ElementsAre("activity begins", "timer every 180 s");
  EXPECT_THAT(firstCallTrace, begun);
  recording::fireTimers();
  reply("supportsWindowMove");
  recording::fireTimers();
  EXPECT_THAT(trace(), IsEmpty());
  recording::fireTimers();
  EXPECT_THAT(trace(), ElementsAre("timer ended", "activity ends"));

  engine->call("launch_at_startup", "launchAtStartupIsEnabled");
  EXPECT_THAT(trace(), begun);
}

TEST_F(WakingTest, BecomingKeyShowsTheCursorAgain) {
  script().mainDisplay = 5;
  reply("hideCursor");
  EXPECT_TRUE(window->_shouldHideCursor);
  window->showCursorOnBecomingKey();
  EXPECT_FALSE(window->_shouldHideCursor);
  EXPECT_THAT(trace(), ElementsAre("hide cursor on 5", "show cursor on 5"));
  reply("hideCursor");
  reply("showCursor");
  EXPECT_FALSE(window->_shouldHideCursor);
}

TEST_F(WakingTest, TheLastFrameOutlivesTheWindow) {
  const auto frame = std::make_unique<uint8_t[]>(16);
  window->_prevFrame = frame.get();
  window.reset();
  frame[15] = 1;  // freed by the window, this and the second release would be memory errors
  EXPECT_EQ(frame[15], 1);
}

}  // namespace
}  // namespace tapdeck
