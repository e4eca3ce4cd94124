#include <cmath>
#include <sstream>

#include "Platform/Queues.h"
#include "Runner/Arguments.h"
#include "Tests/Unit/HostTest.h"

namespace tapdeck {
namespace {

class DispatcherTest : public HostTest {};

TEST_F(DispatcherTest, EveryMethodHasItsReplyWithoutAWindow) {
  script().captureGrantedOnRequest = true;
  script().pasteboard = "kept";
  window.reset();
  const ValueMap given =
      mapOf("bundleId", "app", "dx", 1, "dy", 1, "x", 1, "y", 1, "display", "1", "button", "left",
            "amount", 3, "direction", 1, "key", "a", "text", "new");
  const std::pair<Value, const char*> answers[] = {
      {Value("kept"), "getClipboard"},
      {Value(""), "getAppIcon"},
      {Value(Value::List()), "getDisplays"},
      {Value(true),
       "supportsWindowMove screenCaptureSupported screenPermissionGranted requestScreenPermission "
       "supportsNowPlaying setClipboard"},
      {Value(false), "isAccessibilityTrusted requestAccessibilityPermission"},
      {Value(50), "getVolumeLevel"},
      {kNull,
       "getRunningApps launchApp moveMouse moveMouseAbs moveWindowToDisplay "
       "openScreenRecordingSettings captureScreen resetScreenCapture screenCursor hideCursor "
       "showCursor openAccessibilitySettings debugWarp click doubleClick mouseDown mouseUp scroll "
       "scrollHorizontal keyPress keyDown keyUp typeText showLaser hideLaser mediaPlayPause "
       "mediaNext mediaPrevious volumeUp volumeDown volumeMute lockScreen sleepSystem "
       "shutdownSystem restartSystem"}};
  for (const auto& [value, methods] : answers) {
    std::istringstream names(methods);
    for (std::string name; names >> name;) EXPECT_EQ(reply(name, given), value) << name;
  }
  EXPECT_THAT(trace(), ElementsAre("preflight screen capture", "request screen capture",
                                   "clear pasteboard", "set pasteboard string 'new'",
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
  const Value badArguments[] = {kNull, Value(3), Value(mapOf()),
                                Value(mapOf("dx", "3", "x", true, "bundleId", 5, "direction", 1)),
                                Value(mapOf("dx", 1, "x", 1, "display", kNull, "amount", 3))};
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

/// What the value is as a string, a number, an integer and a boolean; a dash for what it is not.
std::string readings(const Value& value) {
  const Value map(mapOf("key", value));
  const Arguments arguments(map);
  std::ostringstream text;
  const auto add = [&](const auto& reading) {
    if (reading) text << *reading;
    text << (reading ? " " : "- ");
  };
  add(arguments.string("key"));
  add(arguments.number("key"));
  add(arguments.integer("key"));
  add(arguments.boolean("key"));
  return text.str();
}

TEST_F(DispatcherTest, ArgumentsAreReadByKind) {
  const std::pair<Value, const char*> rows[] = {
      {Value("3"), "3 - - - "},
      {Value(3), "- 3 3 - "},
      {Value(800.0), "- 800 800 - "},
      {Value(800.5), "- 800.5 - - "},
      {Value(true), "- - - 1 "},
      {Value(1.0), "- 1 1 1 "},
      {Value(0), "- 0 0 0 "},
      {Value((int64_t{1} << 53) + 1), "- - 9007199254740993 - "},
      {Value(9223372036854775808.0), "- 9.22337e+18 - - "},
      {Value(-9223372036854775808.0), "- -9.22337e+18 -9223372036854775808 - "},
      {Value(std::nan("")), "- nan - - "},
      {kNull, "- - - - "},
  };
  for (const auto& [value, text] : rows) EXPECT_EQ(readings(value), text);

  // one key that is no string, and the whole map is none that the host reads
  const Value mixed(mapOf("text", "3", 1, "one"));
  EXPECT_EQ(Arguments(mixed).string("text"), std::nullopt);
}

TEST_F(DispatcherTest, BackgroundMethodsReplyFromTheMainQueue) {
  for (const char* method : {"getNowPlaying", "mediaSeek"})
    EXPECT_EQ(outcome(method), std::nullopt);
  EXPECT_THAT(trace(), ElementsAre("async on utility", "async on userInitiated"));
  recording::runGlobalQueues();
  EXPECT_THAT(engine->laterReplies, IsEmpty());

  // the jobs keep the window until their work on the main queue lets go of it, whatever becomes of
  // the closures
  const std::weak_ptr<MainFlutterWindow> weak = window;
  window.reset();
  EXPECT_FALSE(weak.expired());
  platform::asyncOnMain([&] { EXPECT_TRUE(weak.expired()); });
  recording::runMainQueue();
  EXPECT_EQ(engine->laterReplies.size(), 2u);
}

TEST_F(DispatcherTest, ClipboardKeepsTextAndLeavesTheRestAlone) {
  EXPECT_EQ(reply("getClipboard"), Value(""));
  EXPECT_EQ(reply("setClipboard", "text", ""), Value(true));
  EXPECT_THAT(trace(), ElementsAre("clear pasteboard", "set pasteboard string ''"));
  EXPECT_EQ(script().pasteboard, "");
}

}  // namespace
}  // namespace tapdeck
