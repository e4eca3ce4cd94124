#include <gmock/gmock.h>
#include <gtkmm/main.h>

#include <chrono>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <thread>

#include "Platform/Linux/Media/Players.h"
#include "Platform/Linux/X11/Session/WindowServer.h"
#include "Tests/Support/Desktop/MediaBusPeer.h"
#include "Tests/Support/Desktop/RunningHost.h"

namespace tapdeck::testing {
namespace {

using namespace ::testing;

/// A real media player, mpv, that plays a minute of silence by the name "tone.wav".
class RealPlayer {
 public:
  RealPlayer() {
    if (!eventually([] { return !media::runningPlayers().empty(); })) {
      throw std::runtime_error("mpv does not come up on the bus: " + _player.errors());
    }
  }

 private:
  std::filesystem::path makeTone() const {
    constexpr size_t kSize = 480000;  // one channel of 8 bits, 8000 samples a second
    constexpr std::string_view kHeader(
        "RIFF\x24\x53\x07\0WAVEfmt "
        "\x10\0\0\0\1\0\1\0\x40\x1F\0\0\x40\x1F\0\0\1\0\x08\0data\0\x53\x07\0",
        44);
    auto path = _folder.path / "tone.wav";
    std::ofstream(path, std::ios::binary) << kHeader << std::string(kSize, '\x80');
    return path;
  }

  TemporaryFolder _folder;
  ChildProcess _player{{"mpv", "--no-video", "--ao=null", "--no-terminal", makeTone().string()}};
};

std::string nowPlaying() {
  return call("getNowPlaying", R"({"includeArt": true})");
}

TEST(MediaHostTest, ControlsARealPlayer) {
  const RunningHost host;
  EXPECT_EQ(nowPlaying(), "null\n");
  const RealPlayer player;
  EXPECT_TRUE(eventually([] {
    return ::testing::Value(
        nowPlaying(),
        AllOf(HasSubstr(R"("title":"tone.wav")"), HasSubstr(R"("duration":60.0)"),
              HasSubstr(R"("playing":true,"canSeek":true)"), HasSubstr(R"("app":"Music")")));
  })) << nowPlaying();
  EXPECT_EQ(call("mediaPlayPause"), "null\n");
  EXPECT_TRUE(
      eventually([] { return nowPlaying().find(R"("playing":false)") != std::string::npos; }));
  EXPECT_EQ(call("mediaSeek", R"({"position": 42.5})"), "null\n");
  EXPECT_TRUE(eventually([] {
    return nowPlaying().find(R"("position":42.)") != std::string::npos;
  })) << nowPlaying();
}

TEST(MediaHostTest, SendsTheCoverIfItIsOne) {
  const TemporaryFolder folder;
  const RunningHost host;
  ScriptedPlayer player("music");
  player.load(
      {{"xesam:title", "A\tB\nC"}, {"mpris:artUrl", "file://" + (folder.path / "cover").string()}});
  EXPECT_THAT(nowPlaying(), AllOf(HasSubstr(R"("title":"A B C")"), Not(HasSubstr("\"art\""))));
  std::ofstream(folder.path / "cover") << "P6 1 1 255\n\x20\x80\xE0";
  EXPECT_THAT(nowPlaying(), HasSubstr(R"("art":"/9j/)"));
}

TEST(MediaHostTest, SetsTheVolumeOfTheSoundServer) {
  const SoundServer server;
  const RunningHost host;
  EXPECT_EQ(call("getVolumeLevel"), "100\n");
  call("volumeMute");
  call("volumeDown");
  EXPECT_TRUE(eventually([] { return call("getVolumeLevel") == "90\n"; }));
  EXPECT_TRUE(eventually([] {
    return outputOf({"pactl", "get-sink-mute", "@DEFAULT_SINK@"}) == "Mute: yes\n";
  }));
  EXPECT_THAT(host.errors(), Not(HasSubstr("AppleScript failed")));
}

TEST(MediaHostTest, LocksAndPowersByTheLoginManager) {
  const PrivateBus system;
  const EnvironmentVariable address("DBUS_SYSTEM_BUS_ADDRESS", system.address().c_str());
  bool hangs = false;
  const auto answer = [&hangs](const std::string&, GVariant*) {
    return hangs ? nullptr : g_variant_new("()");
  };
  std::optional<BusPeer> manager(std::in_place, system.address().c_str(), "org.freedesktop.login1",
                                 answer);
  const RunningHost host;
  for (const char* method : {"sleepSystem", "restartSystem", "shutdownSystem", "lockScreen"}) {
    EXPECT_EQ(call(method), "null\n");
  }
  EXPECT_TRUE(eventually([&] { return manager->calls().size() == 4; }));
  EXPECT_THAT(manager->calls(),
              ElementsAre("Suspend(true,)", "Reboot(true,)", "PowerOff(true,)", "Lock()"));
  EXPECT_THAT(host.output(),
              HasSubstr("✅ AppleScript Executed: tell application \"System Events\" to sleep\n"));

  // one that first asks for a password
  hangs = true;
  const size_t before = manager->calls().size();
  EXPECT_EQ(call("sleepSystem"), "null\n");
  EXPECT_TRUE(eventually([&] { return manager->calls().size() > before; }));
  std::this_thread::sleep_for(std::chrono::seconds(3));
  EXPECT_TRUE(manager->callerIsThere());
  manager->refuse("No password.");
  EXPECT_TRUE(eventually([&] { return !manager->callerIsThere(); }));
  EXPECT_THAT(host.errors(), HasSubstr("tapdeck: the machine cannot sleep: No password."));
  manager.reset();
  const BusPeer saver(std::getenv("DBUS_SESSION_BUS_ADDRESS"), "org.gnome.ScreenSaver",
                      [](const std::string&, GVariant*) { return g_variant_new("()"); });
  EXPECT_EQ(call("lockScreen"), "null\n");
  EXPECT_TRUE(eventually([&] { return !saver.calls().empty(); }));
  EXPECT_THAT(saver.calls(), ElementsAre("Lock()"));
  EXPECT_EQ(call("restartSystem"), "null\n");
  EXPECT_TRUE(eventually([&] {
    return host.output().find(
               "❌ AppleScript Execution Error: System Events got an error: "
               "Application isn’t running.") != std::string::npos;
  })) << host.output();
}

}  // namespace
}  // namespace tapdeck::testing

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (argc != 4) return 64;
  tapdeck::testing::hostProgram = argv[1];
  tapdeck::testing::callProgram = argv[2];
  tapdeck::testing::interpreterProgram = argv[3];
  if (gtk_init_check(nullptr, nullptr) == FALSE) return EXIT_FAILURE;
  Gtk::Main::init_gtkmm_internals();
  tapdeck::x11::connectToWindowServer();
  return RUN_ALL_TESTS();
}
