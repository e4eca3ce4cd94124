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
  const ValueMap given{{"bundleId", Value("app")},
                       {"dx", Value(1)},
                       {"dy", Value(1)},
                       {"x", Value(1)},
                       {"y", Value(1)},
                       {"display", Value("1")},
                       {"button", Value("left")},
                       {"amount", Value(3)},
                       {"direction", Value(1)},
                       {"key", Value("a")},
                       {"text", Value("new")}};
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
      {"setClipboard", Value(true)},
  };
  for (const auto& [method, value] : answering) EXPECT_EQ(reply(method, given), value) << method;
  std::istringstream silent(
      "getRunningApps launchApp moveMouse moveMouseAbs moveWindowToDisplay "
      "openScreenRecordingSettings captureScreen resetScreenCapture screenCursor hideCursor "
      "showCursor openAccessibilitySettings debugWarp click doubleClick mouseDown mouseUp scroll "
      "scrollHorizontal keyPress keyDown keyUp typeText showLaser hideLaser mediaPlayPause "
      "mediaNext mediaPrevious volumeUp volumeDown volumeMute lockScreen sleepSystem "
      "shutdownSystem restartSystem");
  for (std::string method; silent >> method;) EXPECT_EQ(reply(method, given), kNull) << method;
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
  const std::vector<Value> badArguments = {
      kNull, Value(3), Value(ValueMap{}),
      Value(ValueMap{
          {"dx", Value("3")}, {"x", Value(true)}, {"bundleId", Value(5)}, {"direction", Value(1)}}),
      Value(ValueMap{{"dx", Value(1)}, {"x", Value(1)}, {"display", kNull}, {"amount", Value(3)}})};
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
  const Value map(ValueMap{{"key", value}});
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
  EXPECT_EQ(reply("setClipboard", ValueMap{{"text", Value("")}}), Value(true));
  EXPECT_THAT(trace(), ElementsAre("clear pasteboard", "set pasteboard string ''"));
  EXPECT_EQ(script().pasteboard, "");
}

}  // namespace
}  // namespace tapdeck
