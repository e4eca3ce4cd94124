#include <gio/gdesktopappinfo.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "Platform/Linux/EngineProtocol/SessionFile.h"
#include "Platform/LoginItems.h"
#include "Platform/UserDefaults.h"
#include "Tests/Support/Desktop/RunningHost.h"

namespace tapdeck::testing {
namespace {

namespace fs = std::filesystem;
using platform::LoginItemStatus;

std::string commandLineOf(int pid) {
  return contentsOf("/proc/" + std::to_string(pid) + "/cmdline");
}

class LoginItemsTest : public ::testing::Test {
 protected:
  LoginItemsTest() { fs::remove_all(path.parent_path()); }

  LoginItemStatus statusOf(const std::string& text) {
    fs::create_directories(path.parent_path());
    std::ofstream(path) << text;
    return platform::mainAppServiceStatus();
  }

  const fs::path path = fs::path(std::getenv("XDG_CONFIG_HOME")) / "autostart" / "tapdeck.desktop";
};

/// Starts what the entry says as a desktop does at login.
void launch(const fs::path& entry) {
  GDesktopAppInfo* info = g_desktop_app_info_new_from_filename(entry.c_str());
  ASSERT_NE(info, nullptr);
  GError* error = nullptr;
  EXPECT_TRUE(g_app_info_launch(G_APP_INFO(info), nullptr, nullptr, &error)) << error->message;
  g_object_unref(info);
}

TEST_F(LoginItemsTest, TheEntryIsReplacedWholeAndRemoved) {
  EXPECT_EQ(platform::mainAppServiceStatus(), LoginItemStatus::notRegistered);
  EXPECT_EQ(platform::unregisterMainAppService(), std::nullopt);
  EXPECT_EQ(statusOf("[Desktop Entry]\nHidden=true\n"), LoginItemStatus::requiresApproval);
  const fs::path old = path.parent_path() / "old";
  fs::create_hard_link(path, old);
  EXPECT_EQ(platform::registerMainAppService(), std::nullopt);
  EXPECT_EQ(platform::mainAppServiceStatus(), LoginItemStatus::enabled);
  EXPECT_EQ(contentsOf(old), "[Desktop Entry]\nHidden=true\n") << "written in place";
  EXPECT_EQ(std::distance(fs::directory_iterator(path.parent_path()), {}), 2) << "litter";
  EXPECT_EQ(platform::unregisterMainAppService(), std::nullopt);
  EXPECT_FALSE(fs::exists(path));
}

TEST_F(LoginItemsTest, ReadsWhatTheUserMadeOfIt) {
  ASSERT_EQ(platform::registerMainAppService(), std::nullopt);
  const std::string ours = contentsOf(path);
  for (const char* off : {"Hidden=true", "X-GNOME-Autostart-enabled=false",
                          "X-MATE-Autostart-enabled=false", "OnlyShowIn=Nowhere;"}) {
    EXPECT_EQ(statusOf(ours + off + "\n"), LoginItemStatus::requiresApproval) << off;
  }
  const std::string entry = "[Desktop Entry]\nType=Application\nName=Tapdeck\n";
  for (const std::string& text : {std::string(), ours + "?\n", entry, entry + "Exec=true\n",
                                  entry + "Exec=\"\n", ours + "TryExec=/nowhere/tapdeck-host\n"}) {
    EXPECT_EQ(statusOf(text), LoginItemStatus::notRegistered) << text;
  }
  // the same program by another name
  const TemporaryFolder folder;
  fs::create_symlink("/proc/self/exe", folder.path / "link");
  EXPECT_EQ(statusOf(entry + "Exec=" + (folder.path / "link").string() + " --port 1\n"),
            LoginItemStatus::enabled);
}

TEST_F(LoginItemsTest, TheEntryStartsThisProgramWithItsOptions) {
  ASSERT_EQ(platform::registerMainAppService(), std::nullopt);
  EXPECT_NE(commandLineOf(getpid()).find('%'), std::string::npos) << "needs odd options to try";
  const TemporaryFolder folder;
  const std::string output = (folder.path / "words").string();
  g_setenv("LOGIN_TESTS_WORDS", output.c_str(), TRUE);
  launch(path);
  EXPECT_TRUE(eventually([&output] { return contentsOf(output) == commandLineOf(getpid()); }))
      << contentsOf(path);
  g_unsetenv("LOGIN_TESTS_WORDS");
}

std::string set(bool value) {
  return call("launchAtStartupSetEnabled",
              std::string("{\"setEnabledValue\":") + (value ? "true}" : "false}"),
              "launch_at_startup");
}

std::string isEnabled() {
  return call("launchAtStartupIsEnabled", "null", "launch_at_startup");
}

TEST_F(LoginItemsTest, TheHostStartsAgainFromItsEntry) {
  const TemporaryFolder folder;
  const fs::path odd = folder.path / "100% \"odd\" '$HOME' `folder` %f \\ d\u00e9j\u00e0 vu";
  fs::create_directory(odd);
  const fs::path program = odd / "tapdeck-host";
  fs::copy_file(hostProgram, program);
  EXPECT_FALSE(platform::userDefaultsBool("LaunchAtLogin__hasMigrated"));
  const auto isServing = [] { return eventually([] { return readSession().has_value(); }); };
  std::string words;
  {
    ChildProcess host({program.string(), "--port=0", "-l", "::1"});
    ASSERT_TRUE(isServing()) << host.errors();
    words = commandLineOf(host.id());
    EXPECT_EQ(isEnabled(), "false\n");
    EXPECT_TRUE(platform::userDefaultsBool("LaunchAtLogin__hasMigrated"));
    EXPECT_EQ(set(true), "null\n");
    EXPECT_EQ(isEnabled(), "true\n");
    host.send(SIGTERM);
    EXPECT_EQ(host.status(), 0) << host.errors();
  }
  launch(path);
  ASSERT_TRUE(isServing());
  const int second = readSession()->pid;
  EXPECT_EQ(commandLineOf(second), words);
  EXPECT_EQ(set(false), "null\n");
  EXPECT_FALSE(fs::exists(path));
  kill(second, SIGTERM);
  EXPECT_TRUE(eventually([] { return !fs::exists(sessionFilePath()); }));
}

}  // namespace
}  // namespace tapdeck::testing

int main(int argc, char** argv) {
  // as the login item of these tests: says how it was started
  if (const char* path = std::getenv("LOGIN_TESTS_WORDS")) {
    std::ofstream(path) << tapdeck::testing::commandLineOf(getpid());
    return 0;
  }
  testing::InitGoogleTest(&argc, argv);
  if (argc < 3) return 64;
  tapdeck::testing::hostProgram = argv[1];
  tapdeck::testing::callProgram = argv[2];
  return RUN_ALL_TESTS();
}
