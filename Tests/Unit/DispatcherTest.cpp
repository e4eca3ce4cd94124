#include <cmath>

#include "Runner/Arguments.h"
#include "Tests/Unit/HostTest.h"

namespace tapdeck {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const Value kNull;

class DispatcherTest : public HostTest {};

TEST_F(DispatcherTest, EveryMethodHasItsReplyWithoutAWindow) {
  script().captureGrantedOnRequest = true;
  script().pasteboard = "kept";
  window.reset();
  const std::pair<const char*, Value> answering[] = {
      {"getAppIcon", Value("")},
      {"getDisplays", Value(Value::List())},
      {"supportsWindowMove", Value(true)},
      {"screenCaptureSupported", Value(true)},
      {"screenPermissionGranted", Value(true)},
      {"requestScreenPermission", Value(true)},
      {"isAccessibilityTrusted", Value(false)},
      {"requestAccessibilityPermission", Value(false)},
      {"getVolumeLevel", Value(50)},
      {"supportsNowPlaying", Value(true)},
      {"getClipboard", Value("kept")},
      {"setClipboard", Value(false)},
  };
  for (const auto& [method, value] : answering) EXPECT_EQ(reply(method), value) << method;
  for (const char* method : {"getRunningApps",
                             "launchApp",
                             "moveMouse",
                             "moveMouseAbs",
                             "moveWindowToDisplay",
                             "openScreenRecordingSettings",
                             "captureScreen",
                             "resetScreenCapture",
                             "screenCursor",
                             "hideCursor",
                             "showCursor",
                             "openAccessibilitySettings",
                             "debugWarp",
                             "click",
                             "doubleClick",
                             "mouseDown",
                             "mouseUp",
                             "scroll",
                             "scrollHorizontal",
                             "keyPress",
                             "keyDown",
                             "keyUp",
                             "typeText",
                             "showLaser",
                             "hideLaser",
                             "mediaPlayPause",
                             "mediaNext",
                             "mediaPrevious",
                             "volumeUp",
                             "volumeDown",
                             "volumeMute",
                             "lockScreen",
                             "sleepSystem",
                             "shutdownSystem",
                             "restartSystem"}) {
    EXPECT_EQ(reply(method), kNull) << method;
  }
  EXPECT_THAT(trace(), ElementsAre("preflight screen capture", "request screen capture",
                                   "open x-apple.systempreferences:com.apple.preference.security?"
                                   "Privacy_ScreenCapture",
                                   "hide cursor on 1", "show cursor on 1"));
}

TEST_F(DispatcherTest, NamesAreMatchedExactly) {
  for (const char* name : {"getdisplays", "GetDisplays", "getDisplays ", "", "launchAtStartup"}) {
    EXPECT_EQ(outcome(name), Outcome(NotImplemented{})) << name;
  }
  EXPECT_EQ(engine->call("launch_at_startup", "getDisplays"), Outcome(NotImplemented{}));
}

TEST_F(DispatcherTest, MissingArgumentsGetTheMethodsOwnError) {
  const auto invalid = [](const char* message) {
    return Outcome(MethodError{"INVALID_ARGS", message, kNull});
  };
  const std::vector<Value> badArguments = {
      kNull, Value(3), Value(ValueMap{}),
      Value(ValueMap{{"dx", Value("3")}, {"x", Value(true)}, {"bundleId", Value(5)}}),
      Value(ValueMap{{"dx", Value(1)}, {"x", Value(1)}, {"display", kNull}})};
  for (const Value& bad : badArguments) {
    EXPECT_EQ(outcome("launchApp", bad), invalid("bundleId required"));
    EXPECT_EQ(outcome("moveMouse", bad), invalid("Invalid arguments"));
    EXPECT_EQ(outcome("moveMouseAbs", bad), invalid("x and y required"));
    EXPECT_EQ(outcome("moveWindowToDisplay", bad), invalid("display required"));
    EXPECT_EQ(reply("getAppIcon", bad), Value(""));
    EXPECT_EQ(reply("setClipboard", bad), Value(false));
    for (const char* method : {"click", "scroll", "scrollHorizontal", "keyPress", "typeText"}) {
      EXPECT_EQ(reply(method, bad), kNull) << method;
    }
  }
  EXPECT_THAT(trace(), IsEmpty());
}

TEST_F(DispatcherTest, ArgumentsAreReadByKind) {
  const int64_t beyondDouble = (int64_t{1} << 53) + 1;
  const Value value(ValueMap{{"text", Value("3")},
                             {"three", Value(3)},
                             {"whole", Value(800.0)},
                             {"broken", Value(800.5)},
                             {"yes", Value(true)},
                             {"one", Value(1.0)},
                             {"zero", Value(0)},
                             {"two", Value(2)},
                             {"odd", Value(beyondDouble)},
                             {"huge", Value(9223372036854775808.0)},
                             {"nan", Value(std::nan(""))},
                             {"null", kNull}});
  const Arguments arguments(value);
  EXPECT_EQ(arguments.string("text"), "3");
  for (const char* key : {"three", "yes", "null", "absent"}) {
    EXPECT_EQ(arguments.string(key), std::nullopt) << key;
  }
  EXPECT_EQ(arguments.number("three"), 3.0);
  EXPECT_EQ(arguments.number("broken"), 800.5);
  EXPECT_TRUE(std::isnan(arguments.number("nan").value()));
  for (const char* key : {"text", "yes", "odd", "null", "absent"}) {
    EXPECT_EQ(arguments.number(key), std::nullopt) << key;
  }
  EXPECT_EQ(arguments.integer("whole"), 800);
  EXPECT_EQ(arguments.integer("odd"), beyondDouble);
  for (const char* key : {"broken", "huge", "nan", "yes", "text", "null", "absent"}) {
    EXPECT_EQ(arguments.integer(key), std::nullopt) << key;
  }
  EXPECT_EQ(arguments.boolean("yes"), true);
  EXPECT_EQ(arguments.boolean("one"), true);
  EXPECT_EQ(arguments.boolean("zero"), false);
  for (const char* key : {"two", "broken", "text", "nan", "null", "absent"}) {
    EXPECT_EQ(arguments.boolean(key), std::nullopt) << key;
  }

  // one key that is no string, and the whole map is none that the host reads
  ValueMap mixed{{"text", Value("3")}};
  mixed.set(Value(1), Value("one"));
  const Value mixedValue(mixed);
  EXPECT_EQ(Arguments(mixedValue).string("text"), std::nullopt);
}

TEST_F(DispatcherTest, BackgroundMethodsReplyFromTheMainQueue) {
  for (const char* method : {"getNowPlaying", "mediaSeek"}) {
    EXPECT_EQ(outcome(method), std::nullopt);
  }
  EXPECT_THAT(trace(), ElementsAre("async on utility", "async on userInitiated"));
  recording::runGlobalQueues();
  EXPECT_THAT(engine->laterReplies, IsEmpty());

  // the job keeps the window until the main thread lets go of it
  const std::weak_ptr<MainFlutterWindow> weak = window;
  window.reset();
  EXPECT_FALSE(weak.expired());
  recording::runMainQueue();
  EXPECT_TRUE(weak.expired());
  EXPECT_EQ(engine->laterReplies.size(), 2u);
}

TEST_F(DispatcherTest, ClipboardKeepsTextAndLeavesTheRestAlone) {
  EXPECT_EQ(reply("getClipboard"), Value(""));
  EXPECT_EQ(reply("setClipboard", ValueMap{{"text", Value("")}}), Value(true));
  EXPECT_THAT(trace(), ElementsAre("clear pasteboard", "set pasteboard string ''"));
  EXPECT_EQ(script().pasteboard, "");
}

}  // namespace
}  // namespace tapdeck
