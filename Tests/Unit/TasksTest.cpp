// The four ways of running a program, on the real platform. The interpreter beside this executable
// is one of ours that hands the program to the shell.

#include <fcntl.h>
#include <glib.h>
#include <gmock/gmock.h>
#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Platform/Linux/Fronts/Queues.h"
#include "Platform/Scripts.h"
#include "Runner/Media/Scripts.h"
#include "Tests/Support/MainLoop.h"
#include "Tests/Support/Surroundings.h"

namespace tapdeck {
namespace {

using namespace ::testing;
namespace fs = std::filesystem;

struct Log {
  static void listen() { g_log_set_writer_func(write, nullptr, nullptr); }
  static std::vector<std::string> take() {
    const std::lock_guard lock(mutex);
    return std::exchange(lines, {});
  }
  static size_t size() {
    const std::lock_guard lock(mutex);
    return lines.size();
  }

 private:
  static GLogWriterOutput write(GLogLevelFlags, const GLogField* fields, gsize count, gpointer) {
    const std::lock_guard lock(mutex);
    for (gsize i = 0; i < count; ++i) {
      if (std::string(fields[i].key) == "MESSAGE") {
        lines.emplace_back(static_cast<const char*>(fields[i].value));
      }
    }
    return G_LOG_WRITER_HANDLED;
  }
  static inline std::mutex mutex;
  static inline std::vector<std::string> lines;
};

bool hasNoChildren() {
  siginfo_t ended{};
  return waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT) != 0 && errno == ECHILD;
}

class TasksTest : public ::testing::Test {
 protected:
  TasksTest() {
    [[maybe_unused]] static const bool listens = (Log::listen(), true);
    const std::string path = platform::scriptInterpreterPath();
    std::ofstream(path) << "#!/bin/sh\n[ $# = 2 ] && [ \"$1\" = -e ] && eval \"$2\"\n";
    fs::permissions(path, fs::perms::owner_all);
  }
  ~TasksTest() override {
    EXPECT_TRUE(eventually(hasNoChildren));
    EXPECT_TRUE(platform::finishGlobalQueues(std::chrono::seconds(10)));
    Log::take();
  }
};

TEST_F(TasksTest, CapturesAllOutputAndOnlyUtf8) {
  EXPECT_EQ(runScriptCapturing("echo true; exit 3"), "true\n");
  EXPECT_EQ(runScriptCapturing("yes 123456789 | head -c 300000").size(), 300000u);
  EXPECT_EQ(runScriptCapturing("printf 'a\\377b'"), "");
}

TEST_F(TasksTest, BoundsTheWait) {
  EXPECT_EQ(runScriptBounded("printf '  \\343\\200\\200true \\n'; echo noise >&2", 30), "true");
  EXPECT_EQ(runScriptBounded("echo true; exit 1", 30), std::nullopt);
  EXPECT_EQ(runScriptBounded("echo true; kill -KILL $$", 30), std::nullopt);
  EXPECT_EQ(runScriptBounded("printf 'a\\377b'", 30), std::nullopt);
  EXPECT_THAT(Log::take(), IsEmpty());

  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(runScriptBounded("exec sleep 60", 0.25), std::nullopt);
  // nobody reads before the end, so the pipe fills
  EXPECT_EQ(runScriptBounded("exec head -c 200000 /dev/zero", 0.25), std::nullopt);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
  EXPECT_THAT(Log::take(), ElementsAre("⚠️ AppleScript timed out after 0.25s",
                                       "⚠️ AppleScript timed out after 0.25s"));
  EXPECT_TRUE(eventually(hasNoChildren));
}

TEST_F(TasksTest, DetachedRunsReportTheirFailuresWhenTheyCome) {
  const TemporaryFolder folder;
  const std::string sign = folder.path / "sign";
  // it ends only once the call has returned
  runScriptDetached("until [ -e " + sign + " ]; do sleep 0.02; done; echo 'no player' >&2; exit 1");
  runScriptDetached("echo noise >&2");
  runScriptDetached("kill -TERM $$");
  EXPECT_TRUE(eventually([] { return Log::size() == 1; }));
  std::ofstream(sign).put('!');
  EXPECT_TRUE(eventually([] { return Log::size() == 2; }));
  EXPECT_THAT(Log::take(), ElementsAre("⚠️ AppleScript failed (status 15): ",
                                       "⚠️ AppleScript failed (status 1): no player\n"));
}

TEST_F(TasksTest, AMissingInterpreterIsLoggedOrEndsTheProcess) {
  fs::remove(platform::scriptInterpreterPath());
  EXPECT_EQ(runScriptBounded("echo true", 5), std::nullopt);
  runScriptDetached("true");
  const auto refused = StartsWith("⚠️ Could not launch osascript: ");
  EXPECT_THAT(Log::take(), ElementsAre(refused, refused));
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(runScriptCapturing("true"), ::testing::KilledBySignal(SIGABRT), "tapdeck-osascript");
}

TEST_F(TasksTest, ChildrenGetNoDescriptorsOfOurs) {
  const int leaked = open("/dev/null", O_RDONLY);
  EXPECT_EQ(runScriptCapturing("for f in /proc/$$/fd/*; do readlink $f; done | grep -c /dev/null"),
            "1\n");
  close(leaked);
}

TEST_F(TasksTest, TwoHundredRunsLeaveNothingBehind) {
  runScriptDetached("true");
  const auto before = openDescriptors();
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int run = 0; run < 40; ++run) {
        const std::string word = "run" + std::to_string(run);
        EXPECT_EQ(runScriptBounded("echo " + word, 30), word);
      }
      EXPECT_EQ(runScriptBounded("exec sleep 60", 0.05), std::nullopt);
    });
  }
  for (int run = 0; run < 40; ++run) runScriptDetached("echo failed >&2; exit 1");
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(eventually([] { return Log::size() == 44; }));
  EXPECT_TRUE(eventually(hasNoChildren));
  EXPECT_TRUE(eventually([before] { return openDescriptors() <= before; }));
}

}  // namespace
}  // namespace tapdeck
