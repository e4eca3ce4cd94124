#include <gmock/gmock.h>
#include <signal.h>
#include <sys/time.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "Platform/Clock.h"
#include "Platform/Linux/Permissions.h"
#include "Platform/Linux/Queues.h"
#include "Platform/Linux/StandInEngine/BrowserName.h"
#include "Platform/ProcessInfo.h"
#include "Platform/Workspace.h"
#include "Tests/Support/MainLoop.h"
#include "Tests/Support/Surroundings.h"

namespace tapdeck::testing {
namespace {

using permissions::isGranted;
using permissions::Permission;

class UserSettingsTest : public ::testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories(path.parent_path()); }
  void TearDown() override { std::filesystem::remove(path); }

  void write(const std::string& text) { std::ofstream(path) << text; }

  const std::filesystem::path path = permissions::settingsPath();
};

TEST_F(UserSettingsTest, FollowTheFileAtOnce) {
  const std::tuple<const char*, bool, bool> cases[] = {
      {"[Permissions]\ncontrol=false\n", false, true},
      {"[Permissions]\ncontrol=true\nscreenCapture=false\n", true, false},
      {"what is this?", false, false},
      {"[Permissions]\ncontrol=perhaps\n", false, true},
  };
  for (const auto& [text, control, screen] : cases) {
    write(text);
    EXPECT_EQ(isGranted(Permission::control), control) << text;
    EXPECT_EQ(isGranted(Permission::screenCapture), screen) << text;
  }
  std::filesystem::remove(path);
  EXPECT_TRUE(isGranted(Permission::control));
  EXPECT_TRUE(isGranted(Permission::screenCapture));
}

TEST_F(UserSettingsTest, KeepsTheDecisionAndWhatElseIsWritten) {
  write("# mine\n[Permissions]\nscreenCapture=false\n[Other]\nkey=value\n");
  permissions::setGranted(Permission::control, false);
  const std::string written = contentsOf(path);
  for (const char* part : {"# mine", "control=false", "screenCapture=false", "key=value"}) {
    EXPECT_THAT(written, ::testing::HasSubstr(part));
  }
}

TEST(WorkspaceTest, TakesNothingForAnAddressThatIsNone) {
  for (const char* text : {"", "http://a b/", "%zz", "caf\xC3\xA9"}) {
    EXPECT_FALSE(platform::urlWithString(text)) << text;
  }
}

TEST(StopProcessDeathTest, NamesTheValueAndAborts) {
  EXPECT_EXIT(platform::stopProcess("the value 1e300"), ::testing::KilledBySignal(SIGABRT),
              "❌ the value 1e300");
}

TEST(ClockTest, SleepsItsTimeThroughSignals) {
  struct sigaction interrupting {};
  interrupting.sa_handler = [](int) {};
  sigaction(SIGALRM, &interrupting, nullptr);
  const itimerval often{{0, 5000}, {0, 5000}};
  setitimer(ITIMER_REAL, &often, nullptr);
  const double start = platform::systemUptime();
  platform::sleepMicroseconds(60'000);
  const double slept = platform::systemUptime() - start;
  const itimerval never{};
  setitimer(ITIMER_REAL, &never, nullptr);
  EXPECT_GE(slept, 0.060);
  EXPECT_LT(slept, 0.5);
}

TEST(QueuesTest, RunsMainWorkInOrderAndGlobalWorkElsewhere) {
  std::vector<int> order;
  std::atomic<bool> elsewhere = false;
  const auto main = std::this_thread::get_id();
  for (const int i : {0, 1, 2}) platform::asyncOnMain([&order, i] { order.push_back(i); });
  platform::asyncOnGlobal(platform::QualityOfService::utility, [&] {
    elsewhere = std::this_thread::get_id() != main;
    platform::asyncOnMain([&order] { order.push_back(3); });
  });
  EXPECT_TRUE(order.empty());
  EXPECT_TRUE(eventually([&order] { return order.size() == 4; }));
  EXPECT_EQ(order, (std::vector{0, 1, 2, 3}));
  EXPECT_TRUE(elsewhere);

  std::atomic<bool> release = false;
  platform::asyncOnGlobal(platform::QualityOfService::userInitiated, [&release] {
    while (!release) platform::sleepMicroseconds(1000);
  });
  EXPECT_FALSE(platform::finishGlobalQueues(std::chrono::milliseconds(50)));
  release = true;
  EXPECT_TRUE(platform::finishGlobalQueues(std::chrono::seconds(5)));
}

TEST(BrowserNameTest, SaysWhatPeopleSay) {
  const std::pair<const char*, const char*> cases[] = {
      {"Mozilla/5.0 (iPhone; iPhone OS 17_0 like Mac OS X) Safari/604.1", "Safari on iPhone"},
      {"Mozilla/5.0 (Linux; Android 10) Chrome/120.0 Mobile Safari/537.36", "Chrome on Android"},
      {"Mozilla/5.0 (Windows NT 10.0) Chrome/120.0 Safari/537.36 Edg/120.0", "Edge on Windows"},
      {"tapdeck-call/1", "tapdeck-call"},
      {"", "Unknown program"},
  };
  for (const auto& [userAgent, name] : cases) EXPECT_EQ(browserName(userAgent), name);
}

}  // namespace
}  // namespace tapdeck::testing
