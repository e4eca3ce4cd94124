#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>
#include <fstream>

#include "Platform/Linux/Permissions.h"
#include "Platform/Linux/SessionFile.h"
#include "Tests/Desktop/ApplicationProcess.h"
#include "Tests/Desktop/PrivateServer.h"

namespace tapdeck::testing {
namespace {

constexpr const char* kGreeting = "Tapdeck: http://127.0.0.1:";

/// A host on the display at hand or another, ready to be used.
class RunningHost : public ChildProcess {
 public:
  explicit RunningHost(const char* display = std::getenv("DISPLAY"))
      : ChildProcess({hostProgram, "--port", "0"}, {{"DISPLAY", display}}) {
    EXPECT_TRUE(loopUntil([this] { return output().ends_with("\n") || !isRunning(); }));
    EXPECT_EQ(output().rfind(kGreeting, 0), 0U) << output() << errors();
  }
};

bool windowIsVisible() {
  return !outputOf({"xdotool", "search", "--onlyvisible", "--name", "^Tapdeck$"}).empty();
}

TEST(HostTest, EndsCleanlyAtTheUsualSignals) {
  for (const int signal : {SIGTERM, SIGINT}) {
    RunningHost host;
    ASSERT_TRUE(readSession());
    EXPECT_EQ(host.output(), "Tapdeck: " + readSession()->url + "\n");
    host.send(signal);
    EXPECT_EQ(host.status(), 0) << host.errors();
    EXPECT_FALSE(std::filesystem::exists(sessionFilePath()));
    EXPECT_EQ(host.errors().find("CRITICAL"), std::string::npos) << host.errors();
  }
}

TEST(HostTest, OutlivesItsWindowAndBringsItBack) {
  RunningHost host;
  ASSERT_TRUE(loopUntil(windowIsVisible));
  outputOf({"wmctrl", "-c", "Tapdeck"});
  ASSERT_TRUE(loopUntil([] { return !windowIsVisible(); }));
  EXPECT_TRUE(host.isRunning());
  EXPECT_EQ(outputOf({hostProgram, "--show"}), host.output());
  EXPECT_TRUE(loopUntil(windowIsVisible));
}

TEST(HostTest, AsksTheUserWhoDecidesByTheSwitch) {
  std::filesystem::remove(permissions::settingsPath());
  RunningHost host;
  ASSERT_TRUE(loopUntil(windowIsVisible));
  outputOf({"wmctrl", "-c", "Tapdeck"});
  ASSERT_TRUE(loopUntil([] { return !windowIsVisible(); }));
  EXPECT_EQ(outputOf({callProgram, "openAccessibilitySettings"}), "null\n");
  ASSERT_TRUE(loopUntil([] {
    return outputOf({"xdotool", "getwindowfocus", "getwindowname"}) == "Tapdeck\n";
  }));
  outputOf({"xdotool", "key", "space"});
  EXPECT_TRUE(loopUntil([] { return !permissions::isGranted(permissions::Permission::control); }));
  EXPECT_TRUE(permissions::isGranted(permissions::Permission::screenCapture));
  EXPECT_EQ(outputOf({callProgram, "isAccessibilityTrusted"}), "false\n");
  std::filesystem::remove(permissions::settingsPath());
}

TEST(HostTest, SaysWhyItCannotStart) {
  const PrivateServer bare({"-extension", "XTEST"});
  RunningHost first;
  const std::string port = std::to_string(readSession()->port);
  struct Case {
    std::vector<std::string> options;
    const char* display;
    int status;
    std::string message;
  };
  const char* here = std::getenv("DISPLAY");
  const std::vector<Case> cases = {
      {{}, nullptr, 1, "DISPLAY"},
      {{}, ":6999", 1, ":6999"},
      {{}, bare.display().c_str(), 1, "XTEST"},
      {{"--port", port}, here, 1, port},
      {{"--listen", "nowhere"}, here, 1, "nowhere"},
      {{"--port", "65536"}, here, 64, "65535"},
      {{"--porto=1"}, here, 64, "porto"},
      {{"stray"}, here, 64, "stray"},
  };
  for (const auto& [options, display, status, message] : cases) {
    std::vector<std::string> arguments = {hostProgram};
    arguments.insert(arguments.end(), options.begin(), options.end());
    ChildProcess host(arguments, {{"DISPLAY", display}});
    EXPECT_EQ(host.status(), status) << message << ": " << host.errors();
    EXPECT_EQ(host.output(), "");
    EXPECT_NE(host.errors().find(message), std::string::npos) << message << ": " << host.errors();
    EXPECT_EQ(host.errors().find("Gtk-WARNING"), std::string::npos) << host.errors();
  }
  EXPECT_TRUE(readSession()) << "a host that could not start took the running one's session";
}

TEST(HostTest, EndsWithItsXServer) {
  PrivateServer server({});
  RunningHost host(server.display().c_str());
  server.kill();
  EXPECT_EQ(host.status(), 1);
  EXPECT_NE(host.errors().find("X server"), std::string::npos) << host.errors();
  EXPECT_FALSE(std::filesystem::exists(sessionFilePath()));
}

}  // namespace
}  // namespace tapdeck::testing
