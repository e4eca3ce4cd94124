#include <gmock/gmock.h>
#include <gtkmm/main.h>
#include <signal.h>

#include <cstdlib>
#include <filesystem>
#include <tuple>
#include <vector>

#include "Platform/Linux/Application/FatalError.h"
#include "Platform/Linux/Application/GtkConnection.h"
#include "Platform/Linux/EngineProtocol/SessionFile.h"
#include "Platform/Linux/Permissions/Permissions.h"
#include "Tests/Support/Desktop/PrivateServer.h"
#include "Tests/Support/Desktop/RunningHost.h"
#include "Tests/Support/MainLoop.h"

namespace tapdeck::testing {
namespace {

using namespace ::testing;

bool windowIsVisible() {
  return !outputOf({"xdotool", "search", "--onlyvisible", "--name", "^Tapdeck$"}).empty();
}

void closeTheWindow() {
  ASSERT_TRUE(eventually(windowIsVisible));
  outputOf({"wmctrl", "-c", "Tapdeck"});
  ASSERT_TRUE(eventually([] { return !windowIsVisible(); }));
}

/// Types into the window, in which the switch of the first permission has the focus.
void typeIntoTheSettings(std::vector<std::string> keys) {
  EXPECT_EQ(call("openAccessibilitySettings"), "null\n");
  ASSERT_TRUE(eventually([] {
    return outputOf({"xdotool", "getwindowfocus", "getwindowname"}) == "Tapdeck\n";
  }));
  keys.insert(keys.begin(), {"xdotool", "key"});
  outputOf(keys);
}

TEST(HostTest, EndsCleanlyAtTheUsualSignals) {
  for (const int signal : {SIGTERM, SIGINT}) {
    RunningHost host;
    // not the token: standard output may be a journal here
    EXPECT_EQ(host.output(),
              "Tapdeck: the page's address is in " + sessionFilePath().string() + "\n");
    host.send(signal);
    EXPECT_EQ(host.status(), 0) << host.errors();
    EXPECT_FALSE(std::filesystem::exists(sessionFilePath()));
    EXPECT_THAT(host.errors(), Not(HasSubstr("CRITICAL")));
  }
}

TEST(HostTest, EndsInTheMiddleOfALongText) {
  RunningHost host;
  const std::string text(6000, 'a');
  ChildProcess call({callProgram, "typeText", "{\"text\": \"" + text + "\"}"});
  runFor(std::chrono::seconds(1));
  host.send(SIGTERM);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(host.status(), 0) << host.errors();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
  EXPECT_EQ(call.status(), 0) << "the text had not begun: " << call.errors();
}

TEST(HostTest, OutlivesItsWindowAndBringsItBack) {
  RunningHost host;
  closeTheWindow();
  EXPECT_EQ(outputOf({hostProgram, "--show"}), "Tapdeck: " + readSession().value().url + "\n");
  EXPECT_TRUE(eventually(windowIsVisible));
}

TEST(HostTest, AsksTheUserWhoDecidesByTheSwitch) {
  std::filesystem::remove(permissions::settingsPath());
  RunningHost host;
  closeTheWindow();
  typeIntoTheSettings({"space"});
  EXPECT_TRUE(eventually([] { return !permissions::isGranted(permissions::Permission::control); }));
  EXPECT_TRUE(permissions::isGranted(permissions::Permission::screenCapture));
  EXPECT_EQ(call("isAccessibilityTrusted"), "false\n");
  std::filesystem::remove(permissions::settingsPath());
}

TEST(HostTest, LetsTheNetworkInByTheSwitchAndRemembersIt) {
  // this computer by another of its addresses, in the place of a network's
  const auto isOpen = [] {
    const auto client = g_socket_client_new();
    const auto connection = g_socket_client_connect_to_host(
        client, "127.0.0.2", readSession().value().port, nullptr, nullptr);
    g_object_unref(client);
    if (connection != nullptr) g_object_unref(connection);
    return connection != nullptr;
  };
  // the switch stands two before that of the permission
  const auto turnSwitch = [] { typeIntoTheSettings({"shift+Tab", "shift+Tab", "space"}); };
  {
    RunningHost host;
    EXPECT_FALSE(isOpen());
    turnSwitch();
    EXPECT_TRUE(eventually(isOpen));
    host.send(SIGTERM);
    EXPECT_EQ(host.status(), 0);
  }
  RunningHost again;
  EXPECT_TRUE(isOpen());
  turnSwitch();
  EXPECT_TRUE(eventually([&] { return !isOpen(); }));
}

TEST(HostTest, SaysWhyItCannotStart) {
  const PrivateServer bare({"-extension", "XTEST"}), other({});
  RunningHost first;
  const Session session = readSession().value();
  const std::string port = std::to_string(session.port);
  const std::string here = std::getenv("DISPLAY");
  const std::tuple<std::vector<std::string>, const char*, int, std::string> cases[] = {
      {{}, nullptr, 1, "DISPLAY"},
      {{}, bare.display().c_str(), 1, "XTEST"},
      {{"--port", "0"}, here.c_str(), 1, "another Tapdeck controls this display"},
      {{"--port", port},
       other.display().c_str(),
       1,
       "Port " + port + " is taken by another program. Choose another port with --port"},
      {{"--listen", "nowhere"}, other.display().c_str(), 1, "\"nowhere\" is not an IP address"},
      // a documentation address: no machine has it
      {{"--listen", "192.0.2.1"}, other.display().c_str(), 1, "Cannot listen on 192.0.2.1"},
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

TEST(FatalErrorDeathTest, SaysWhyAndEnds) {
  const auto fail = []() noexcept { std::ignore = std::vector<int>().at(1); };
  EXPECT_EXIT(
      {
        endCleanlyOnFatalError();
        fail();
      },
      ::testing::ExitedWithCode(1), "tapdeck: ended by an error: vector");
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
