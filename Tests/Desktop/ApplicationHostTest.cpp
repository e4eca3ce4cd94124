#include <gmock/gmock.h>
#include <gtkmm/main.h>
#include <signal.h>

#include <cstdlib>
#include <filesystem>

#include "Platform/Linux/Application/GtkConnection.h"
#include "Platform/Linux/EngineProtocol/SessionFile.h"
#include "Platform/Linux/Permissions/Permissions.h"
#include "Tests/Support/Desktop/PrivateServer.h"
#include "Tests/Support/MainLoop.h"

namespace tapdeck::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

bool windowIsVisible() {
  return !outputOf({"xdotool", "search", "--onlyvisible", "--name", "^Tapdeck$"}).empty();
}

void closeTheWindow() {
  ASSERT_TRUE(eventually(windowIsVisible));
  outputOf({"wmctrl", "-c", "Tapdeck"});
  ASSERT_TRUE(eventually([] { return !windowIsVisible(); }));
}

TEST(HostTest, EndsCleanlyAtTheUsualSignals) {
  for (const int signal : {SIGTERM, SIGINT}) {
    RunningHost host;
    EXPECT_EQ(host.output(), "Tapdeck: " + readSession().value().url + "\n");
    host.send(signal);
    EXPECT_EQ(host.status(), 0) << host.errors();
    EXPECT_FALSE(std::filesystem::exists(sessionFilePath()));
    EXPECT_THAT(host.errors(), Not(HasSubstr("CRITICAL")));
  }
}

TEST(HostTest, OutlivesItsWindowAndBringsItBack) {
  RunningHost host;
  closeTheWindow();
  EXPECT_EQ(outputOf({hostProgram, "--show"}), host.output());
  EXPECT_TRUE(eventually(windowIsVisible));
}

TEST(HostTest, AsksTheUserWhoDecidesByTheSwitch) {
  std::filesystem::remove(permissions::settingsPath());
  RunningHost host;
  closeTheWindow();
  EXPECT_EQ(call("openAccessibilitySettings"), "null\n");
  ASSERT_TRUE(eventually([] {
    return outputOf({"xdotool", "getwindowfocus", "getwindowname"}) == "Tapdeck\n";
  }));
  outputOf({"xdotool", "key", "space"});
  EXPECT_TRUE(eventually([] { return !permissions::isGranted(permissions::Permission::control); }));
  EXPECT_TRUE(permissions::isGranted(permissions::Permission::screenCapture));
  EXPECT_EQ(call("isAccessibilityTrusted"), "false\n");
  std::filesystem::remove(permissions::settingsPath());
}

TEST(HostTest, SaysWhyItCannotStart) {
  const PrivateServer bare({"-extension", "XTEST"});
  RunningHost first;
  const Session session = readSession().value();
  const std::string port = std::to_string(session.port);
  const std::string here = std::getenv("DISPLAY");
  const std::tuple<std::vector<std::string>, const char*, int, std::string> cases[] = {
      {{}, nullptr, 1, "DISPLAY"},
      {{}, bare.display().c_str(), 1, "XTEST"},
      {{"--port", port},
       here.c_str(),
       1,
       "Port " + port + " is taken by another program. Choose another port with --port"},
      {{"--listen", "nowhere"}, here.c_str(), 1, "\"nowhere\" is not an IP address"},
      // a documentation address: no machine has it
      {{"--listen", "192.0.2.1"}, here.c_str(), 1, "Cannot listen on 192.0.2.1"},
      {{"--porto=1"}, here.c_str(), 64, "porto"},
  };
  for (const auto& [options, display, status, message] : cases) {
    const DisplayVariable variable(display);
    std::vector<std::string> arguments = options;
    arguments.insert(arguments.begin(), hostProgram);
    ChildProcess host(arguments);
    EXPECT_EQ(host.status(), status) << message;
    EXPECT_EQ(host.output(), "");
    EXPECT_THAT(host.errors(), AllOf(HasSubstr(message), Not(HasSubstr("Gtk-WARNING"))));
  }
  EXPECT_EQ(readSession().value().token, session.token) << "the running one's session is gone";
}

TEST(HostTest, EndsWithItsXServer) {
  PrivateServer server({});
  const DisplayVariable variable(server.display().c_str());
  RunningHost host;
  server.kill();
  EXPECT_EQ(host.status(), 1);
  EXPECT_THAT(host.errors(), HasSubstr("X server"));
  EXPECT_FALSE(std::filesystem::exists(sessionFilePath()));
}

}  // namespace
}  // namespace tapdeck::testing

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (argc != 3) return 64;
  tapdeck::testing::hostProgram = argv[1];
  tapdeck::testing::callProgram = argv[2];
  tapdeck::connectGtk();
  Gtk::Main::init_gtkmm_internals();
  return RUN_ALL_TESTS();
}
