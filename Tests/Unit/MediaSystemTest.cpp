#include <dlfcn.h>

#include "Tests/Unit/MediaTest.h"

namespace tapdeck {
namespace {

class MediaSystemTest : public MediaTest {};

TEST_F(MediaSystemTest, VolumeStepsRunDetached) {
  const std::pair<const char*, const char*> steps[] = {
      {"volumeUp", "set volume output volume (output volume of (get volume settings) + 10)"},
      {"volumeDown", "set volume output volume (output volume of (get volume settings) - 10)"},
      {"volumeMute", "set volume output muted (not (output muted of (get volume settings)))"}};
  for (const auto& [method, program] : steps) {
    const std::string start = std::string("start /usr/bin/osascript -e ") + program + " 2> pipe";
    EXPECT_EQ(reply(method), Value());
    EXPECT_THAT(trace(), ElementsAre(start));
  }
  script().media.launchError = "no such file";
  EXPECT_EQ(reply("volumeUp"), Value());
  EXPECT_EQ(trace()[1], "log ⚠️ Could not launch osascript: no such file");
}

TEST_F(MediaSystemTest, TheVolumeIsANumberOrFifty) {
  const std::pair<const char*, int64_t> outputs[] = {{"37\n", 37},
                                                     {"\u3000+7 \r\n", 7},
                                                     {"-3", -3},
                                                     {"9223372036854775807", INT64_MAX},
                                                     {"9223372036854775808", 50},
                                                     {"missing value\n", 50},
                                                     {"", 50},
                                                     {"+-1", 50},
                                                     {"37.0", 50},
                                                     {"37\xFF", 50}};
  for (const auto& [output, level] : outputs) {
    // neither its status nor the time that it takes is looked at
    script().media.childFor = [text = output](const auto&) { return Child{text, 1, 60}; };
    EXPECT_EQ(reply("getVolumeLevel"), Value(level)) << output;
    EXPECT_THAT(trace(), ElementsAre("launch /usr/bin/osascript -e output volume of (get volume "
                                     "settings) > pipe",
                                     "read pipe"));
  }
  // as the platform raises it, and nobody holds it up
  script().media.launchError = "launch path not accessible";
  auto unanswered = [this] { outcome("getVolumeLevel"); };
  Reply::setMisuseHandler([](const char*) {});
  EXPECT_THROW(unanswered(), std::runtime_error);
}

TEST_F(MediaSystemTest, PowerActionsRunInTheProcessAndSayHowItWent) {
  const std::pair<const char*, std::string> actions[] = {
      {"sleepSystem", "tell application \"System Events\" to sleep"},
      {"shutdownSystem", "tell application \"System Events\" to shut down"},
      {"restartSystem", "tell application \"System Events\" to restart"}};
  for (const auto& [method, program] : actions) {
    for (const bool fails : {false, true}) {
      script().media.appleScriptError = fails ? std::optional("{ -1743 }") : std::nullopt;
      ::testing::internal::CaptureStdout();
      EXPECT_EQ(reply(method), Value());
      EXPECT_EQ(::testing::internal::GetCapturedStdout(),
                fails ? "❌ AppleScript Execution Error: { -1743 }\n"
                      : "✅ AppleScript Executed: " + program + "\n");
      EXPECT_THAT(trace(), ElementsAre("execute " + program));
    }
  }
  script().media.appleScriptFails = true;
  ::testing::internal::CaptureStdout();
  EXPECT_EQ(reply("sleepSystem"), Value());
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
  EXPECT_THAT(trace(), IsEmpty());
}

TEST_F(MediaSystemTest, LocksOnlyWhereSomethingLoadedCan) {
  EXPECT_EQ(reply("lockScreen"), Value());
  void* framework = dlopen(LOCKING_MODULE, RTLD_NOW | RTLD_GLOBAL);
  ASSERT_NE(framework, nullptr) << dlerror();
  const auto* locks = static_cast<const int*>(dlsym(framework, "tapdeckTestLocks"));
  EXPECT_EQ(*locks, 0);
  EXPECT_EQ(reply("lockScreen"), Value());
  EXPECT_EQ(*locks, 1);
  window.reset();
  EXPECT_EQ(reply("lockScreen"), Value());
  EXPECT_EQ(*locks, 1);
  dlclose(framework);
}

}  // namespace
}  // namespace tapdeck
