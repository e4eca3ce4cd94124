#include <gmock/gmock.h>
#include <sys/stat.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <thread>

#include "Platform/Applications.h"
#include "Runner/Media/PlayerScripts.h"
#include "Tests/Support/CoverServer.h"
#include "Tests/Support/Desktop/MediaBusPeer.h"
#include "Tests/Support/Desktop/RunningHost.h"

namespace tapdeck::testing {
namespace {

using std::chrono::milliseconds;
using namespace ::testing;

/// Whoever hangs does so for ever; how soon it is noticed also depends on how busy the machine is.
constexpr std::chrono::seconds kForEver{10};

/// What the interpreter prints; of a failure its message.
std::string run(const std::string& script) {
  ChildProcess interpreter({interpreterProgram, "-e", script});
  const int status = interpreter.status();
  EXPECT_EQ(status == 0, interpreter.errors().empty()) << script;
  return interpreter.output() + interpreter.errors();
}

milliseconds timeOf(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start);
}

TEST(MediaInterpreterTest, TellsPlayersApart) {
  EXPECT_THAT(platform::runningApplicationNames(), IsEmpty());
  const ScriptedPlayer spotify("spotify");
  const ScriptedPlayer vlc("vlc.instance12");
  const ScriptedPlayer relay("playerctld");
  EXPECT_THAT(platform::runningApplicationNames(), ElementsAre("Spotify", "VLC"));
  ScriptedPlayer first("amarok", "Paused");
  const ScriptedPlayer second("browser.instance1", "Playing");
  ScriptedPlayer third("clementine", "Stopped");
  std::vector<std::string> elsewhere;
  std::thread([&] { elsewhere = platform::runningApplicationNames(); }).join();
  EXPECT_THAT(elsewhere, ElementsAre("Music", "Spotify", "VLC"));

  third.hang();  // one that hangs must not keep the others from being asked
  EXPECT_EQ(run(commandScript("Music", "playpause")), "");
  EXPECT_EQ(run(commandScript("Spotify", "next track")), "");
  EXPECT_EQ(run(commandScript("VLC", "play")), "");
  EXPECT_THAT(second.calls(), ElementsAre("PlayPause()"));
  EXPECT_THAT(spotify.calls(), ElementsAre("Next()"));
  EXPECT_THAT(vlc.calls(), ElementsAre("PlayPause()"));
  EXPECT_THAT(first.calls(), IsEmpty());
  EXPECT_THAT(relay.calls(), IsEmpty());
}

TEST(MediaInterpreterTest, ToLookTakesNoConnectionOfItsOwn) {
  platform::runningApplicationNames();
  const int before = ScriptedPlayer("music").connectionNumber();
  for (int look = 0; look < 3; ++look) platform::runningApplicationNames();
  EXPECT_EQ(ScriptedPlayer("music").connectionNumber(), before + 1);
}

TEST(MediaInterpreterTest, PausedMusicGivesWayToWhatPlays) {
  const ScriptedPlayer tab("browser.instance1", "Paused");
  EXPECT_EQ(run(trackScript("Music")), "true\n");
  {
    const ScriptedPlayer spotify("spotify", "Paused");
    EXPECT_EQ(run(trackScript("Music")), "true\n");
  }
  const ScriptedPlayer spotify("spotify", "Playing");
  EXPECT_EQ(run(trackScript("Music")), "false\n");
  EXPECT_EQ(run(nowPlayingScript("Music")), "none\n");
  const ScriptedPlayer other("amarok", "Playing");
  EXPECT_EQ(run(trackScript("Music")), "true\n");
}

TEST(MediaInterpreterTest, ALiveStreamHasNoLength) {
  ScriptedPlayer player("music");
  for (const uint64_t length : {uint64_t{INT64_MAX}, UINT64_MAX, uint64_t{INT32_MAX} * 1000}) {
    player.setLength(length);
    EXPECT_THAT(run(nowPlayingScript("Music")), StartsWith("Song\t\t\t0.0\t12.5\t"));
  }
  player.setLength(uint64_t{100} * 3600 * 1000000);
  EXPECT_THAT(run(nowPlayingScript("Music")), HasSubstr("\t3.6E+5\t")) << "an audiobook";
}

TEST(MediaInterpreterTest, SeeksByTrackOrFromWhereItIs) {
  ScriptedPlayer player("spotify");
  run(commandScript("Spotify", "set player position to 10"));
  player.load({{"xesam:title", "Song"}, {"mpris:trackid", "/track/1"}});
  run(commandScript("Spotify", "set player position to 1e9"));
  EXPECT_THAT(player.calls(), ElementsAre("Seek(-2500000,)", "SetPosition('/track/1', 215000000)"));
}

TEST(MediaInterpreterTest, APlayerThatHangsOrGoesCostsLittle) {
  ScriptedPlayer hanging("spotify");
  hanging.hang();
  ScriptedPlayer going("music");
  EXPECT_THAT(platform::runningApplicationNames(), Contains("Spotify"));
  EXPECT_LT(timeOf([] { EXPECT_EQ(run(stateScript("Spotify")), "false\n"); }), kForEver);
  EXPECT_THAT(run(commandScript("Spotify", "playpause")),
              HasSubstr("execution error: Spotify got an error"));
  going.vanishAfter(2);
  EXPECT_THAT(run(nowPlayingScript("Music")), StartsWith("Song\t\t\t215.0\t0\tpaused\t"));
  EXPECT_EQ(run(nowPlayingScript("Music")), "none\n");
  EXPECT_EQ(run(nowPlayingScript("VLC")), "none\n");
}

TEST(MediaInterpreterTest, WithoutABusThereAreNoPlayers) {
  const TemporaryFolder folder;
  const EnvironmentVariable runTime("XDG_RUNTIME_DIR", folder.path.c_str());
  for (const char* address :
       {static_cast<const char*>(nullptr), "unix:path=/nowhere", "nonsense"}) {
    const EnvironmentVariable bus("DBUS_SESSION_BUS_ADDRESS", address);
    EXPECT_EQ(run(nowPlayingScript("Music")), "none\n");
  }
}

TEST(MediaInterpreterTest, TakesCoversFromWhereTheyAre) {
  const TemporaryFolder folder;
  const CoverServer server;
  const auto file = [&](const char* name, const std::string& bytes) {
    std::ofstream(folder.path / name, std::ios::binary) << bytes;
    return "file://" + (folder.path / name).string();
  };
  ASSERT_EQ(mkfifo((folder.path / "pipe").c_str(), 0600), 0);
  const std::string large(size_t{20} << 20, 'x');
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {file("empty", ""), "ok", ""},
      {file("large", large), "none", ""},
      {"file://" + (folder.path / "pipe").string(), "none", ""},
      {"file://" + folder.path.string(), "none", ""},
      {"file:///dev/zero", "none", ""},
      {"file:///nowhere", "none", ""},
      {"FILE" + file("shouted", "loud").substr(4), "ok", "loud"},
      {"file://elsewhere/etc/passwd", "none", ""},
      {"data:text/plain,a%20b", "ok", "a b"},
      {"data:image/png;base64,cGljdHVyZQ==", "ok", "picture"},
      {"data:image/png;base64," + large, "none", ""},
      {server.address("/cover"), "ok", "cover"},
      {server.address("/missing"), "none", ""},
      {server.address("/endless"), "none", ""},
      {server.address("/hangs"), "none", ""},
      {"http://127.0.0.1:1/", "none", ""},
      {"gopher://a/", "none", ""},
  };
  ScriptedPlayer player("music");
  const std::filesystem::path cover = folder.path / "cover";
  for (const auto& [url, reply, bytes] : cases) {
    player.load({{"xesam:title", "Song"}, {"mpris:artUrl", url}});
    std::filesystem::remove(cover);
    std::string outcome;
    const auto time = timeOf([&] { outcome = run(artworkScript("Music", cover)); });
    EXPECT_EQ(outcome, reply + "\n") << url.substr(0, 99);
    EXPECT_LT(time, kForEver) << url.substr(0, 99);
    EXPECT_EQ(contentsOf(cover), bytes) << url.substr(0, 99);
  }
}

TEST(MediaInterpreterTest, ReadsAndSetsTheVolume) {
  const std::string read = "output volume of (get volume settings)";
  EXPECT_EQ(run(read), "missing value\n");
  const SoundServer server;
  run("set volume output volume 33");
  EXPECT_EQ(run(read), "33\n");
  outputOf({"pactl", "set-sink-volume", "@DEFAULT_SINK@", "150%"});
  EXPECT_EQ(run(read), "100\n");
  run("set volume output volume (" + read + " + 10)");
  EXPECT_THAT(outputOf({"pactl", "get-sink-volume", "@DEFAULT_SINK@"}), HasSubstr("150%"))
      << "louder is never quieter";
  // the balance between left and right stays
  outputOf({"pactl", "set-sink-volume", "@DEFAULT_SINK@", "80%", "40%"});
  run("set volume output volume (" + read + " - 40)");
  EXPECT_THAT(outputOf({"pactl", "get-sink-volume", "@DEFAULT_SINK@"}),
              AllOf(HasSubstr(" 40% "), HasSubstr(" 20% ")));
}

TEST(MediaInterpreterTest, SpeaksAsOsascriptDoes) {
  ChildProcess lines({interpreterProgram, "-e", "set x to 1", "-e", "x + 1"});
  EXPECT_EQ(lines.status(), 0);
  EXPECT_EQ(lines.output(), "2\n");
  ChildProcess wrong({interpreterProgram, "-e", "tell application \"Music\" to dance"});
  EXPECT_EQ(wrong.status(), 1);
  EXPECT_THAT(wrong.errors(), AllOf(StartsWith("28:33: syntax error: "), HasSubstr(" (-2741)\n")));
}

}  // namespace
}  // namespace tapdeck::testing
