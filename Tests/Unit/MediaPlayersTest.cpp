#include <cmath>
#include <limits>

#include "Runner/Media/PlayerScripts.h"
#include "Tests/Support/Surroundings.h"
#include "Tests/Unit/MediaTest.h"

namespace tapdeck {
namespace {

using ::testing::Each;

class MediaPlayersTest : public MediaTest {
 protected:
  Value seek(const Value& position) {
    EXPECT_EQ(outcome("mediaSeek", "position", position), std::nullopt);
    recording::runGlobalQueues();
    recording::runMainQueue();
    return std::get<Value>(engine->laterReplies.back());
  }
  std::string seekProgram(const Value& position) {
    EXPECT_EQ(seek(position), Value());
    Trace all = trace();
    return all.size() >= 2 ? all[all.size() - 2] : "";
  }
};

TEST(PlayerScriptsTest, AreTheOnesThatThePlayersKnow) {
  const std::pair<const char*, std::string> programs[] = {
      {"state-music", stateScript("Music")},
      {"state-vlc", stateScript("VLC")},
      {"track-music", trackScript("Music")},
      {"track-vlc", trackScript("VLC")},
      {"now-playing-music", nowPlayingScript("Music")},
      {"now-playing-spotify", nowPlayingScript("Spotify")},
      {"now-playing-vlc", nowPlayingScript("VLC")},
      {"artwork-music", artworkScript("Music", "/folder/cover")},
      {"artwork-spotify", spotifyArtworkScript()},
  };
  for (const auto& [name, program] : programs) {
    EXPECT_EQ(program + "\n", contentsOf(std::string(GOLDEN_PROGRAMS "/") + name + ".applescript"));
  }
}

TEST_F(MediaPlayersTest, CommandsGoToTheFirstPlayerThatPlaysInItsWords) {
  const std::string start = "start /usr/bin/osascript -e tell application ";
  run({"Finder", "VLC", "Spotify", "Music"});
  answers[{"state", "Spotify"}] = {"true\n"};
  EXPECT_EQ(reply("mediaNext"), Value());
  EXPECT_THAT(steps(), ElementsAre("state Music", "read pipe", "state Spotify", "read pipe",
                                   start + "\"Spotify\" to next track 2> pipe"));
  reply("mediaPlayPause");
  EXPECT_EQ(trace().back(), start + "\"Spotify\" to playpause 2> pipe");
  reply("mediaPrevious");
  EXPECT_EQ(trace().back(), start + "\"Spotify\" to previous track 2> pipe");

  run({"VLC"});
  answers[{"state", "VLC"}] = {"true"};
  const std::pair<const char*, const char*> commands[] = {
      {"mediaPlayPause", "play"}, {"mediaNext", "next"}, {"mediaPrevious", "previous"}};
  for (const auto& [method, command] : commands) {
    EXPECT_EQ(reply(method), Value());
    EXPECT_THAT(steps(), ElementsAre("state VLC", "read pipe",
                                     start + "\"VLC\" to " + command + " 2> pipe"));
  }
}

TEST_F(MediaPlayersTest, MediaKeysServeWhenNoPlayerPlays) {
  // a name in other letters is no player's
  run({"music", "VLC player", "Spotify"});
  for (const Child& child : {Child{"true", 1}, Child{"\xFFtrue"}, Child{"True"}}) {
    answers[{"state", "Spotify"}] = child;
    reply("mediaNext");
    EXPECT_THAT(steps().back(), ::testing::StartsWith("post system-defined flags 0xb00"));
  }
  run({});
  script().applications.timesNamed = 0;
  const std::pair<const char*, const char*> keys[] = {
      {"mediaPlayPause", "0x10"}, {"mediaNext", "0x11"}, {"mediaPrevious", "0x12"}};
  for (const auto& [method, key] : keys) {
    EXPECT_EQ(reply(method), Value());
    const std::string data = std::string(" subtype 8 data1 ") + key;
    EXPECT_THAT(trace(), ElementsAre("post system-defined flags 0xa00" + data + "0a00 data2 -1",
                                     "sleep 10000",
                                     "post system-defined flags 0xb00" + data + "0b00 data2 -1"));
  }
  EXPECT_EQ(script().applications.timesNamed, 3) << "one look each";
}

TEST_F(MediaPlayersTest, APlayerThatEndsMeanwhileIsNotStartedAgain) {
  run({"Music", "Spotify"});
  script().media.childFor = [](const std::string&) {
    run({"Music"});
    return Child{"false"};
  };
  reply("mediaNext");
  for (const auto& step : steps()) EXPECT_THAT(step, ::testing::Not(HasSubstr("Spotify")));
}

TEST_F(MediaPlayersTest, APlayerThatHangsIsGivenUpAfterItsLimit) {
  run({"Music", "Spotify"});
  answers[{"state", "Music"}] = {"true", 0, 60};
  answers[{"state", "Spotify"}] = {"true", 0, 1.4};
  const double start = script().uptime;
  reply("mediaPlayPause");
  EXPECT_NEAR(script().uptime, start + 1.5 + 1.4, 0.04);
  EXPECT_THAT(steps(), ElementsAre("state Music", "poll", "terminate",
                                   "log ⚠️ AppleScript timed out after 1.5s", "state Spotify",
                                   "poll", "read pipe",
                                   "start /usr/bin/osascript -e tell application \"Spotify\" to "
                                   "playpause 2> pipe"));
  answers[{"track", "Music"}] = {"true", 0, 1.6};
  seek(Value(1));
  EXPECT_THAT(steps(), Contains("log ⚠️ AppleScript timed out after 1.5s"));
}

TEST_F(MediaPlayersTest, SeeksInTheFirstPlayerThatHasATrack) {
  run({"Music", "Spotify", "VLC"});
  answers[{"track", "Spotify"}] = {"true\n"};
  EXPECT_EQ(seek(Value(42.5)), Value());
  EXPECT_THAT(steps(), ElementsAre("async on userInitiated", "track Music", "read pipe",
                                   "track Spotify", "read pipe",
                                   "start /usr/bin/osascript -e tell application \"Spotify\" to "
                                   "set player position to 42.5 2> pipe",
                                   "async on main"));
}

TEST_F(MediaPlayersTest, SeekPositionsAreWrittenForTheirPlayer) {
  const std::tuple<Value, const char*, const char*> rows[] = {
      {Value(42.5), "42.5", "42"},
      {Value(10), "10.0", "10"},
      {Value(-5), "0.0", "0"},
      {Value(-0.0), "0.0", "0"},
      {Value(std::nan("")), "0.0", "0"},
      {Value("7"), "0.0", "0"},
      {Value(0.1 + 0.2), "0.30000000000000004", "0"},
      {Value(0.0001), "0.0001", "0"},
      {Value(0.00001), "1e-05", "0"},
      {Value(9007199254740992.0), "9007199254740992.0", "9007199254740992"},
      {Value(9007199254740994.0), "9.007199254740994e+15", "9007199254740994"},
      {Value(1e16), "1e+16", "10000000000000000"},
      {Value(1e300), "1e+300", "9223372036854775807"},
      {Value(std::numeric_limits<double>::infinity()), "inf", "9223372036854775807"},
  };
  answers[{"track", "Music"}] = answers[{"track", "VLC"}] = {"true"};
  const std::string start = "start /usr/bin/osascript -e tell application ";
  for (const auto& [position, music, vlc] : rows) {
    run({"Music"});
    EXPECT_EQ(seekProgram(position),
              start + "\"Music\" to set player position to " + music + " 2> pipe");
    run({"VLC"});
    EXPECT_EQ(seekProgram(position), start + "\"VLC\" to set current time to " + vlc + " 2> pipe");
  }
}

TEST_F(MediaPlayersTest, NothingIsAskedOnceTheWindowIsGone) {
  run({"Music"});
  outcome("mediaSeek");
  outcome("getNowPlaying");
  trace();
  window.reset();
  recording::runGlobalQueues();
  recording::runMainQueue();
  // nor by calls that come after
  EXPECT_EQ(outcome("mediaSeek"), std::nullopt);
  EXPECT_EQ(outcome("getNowPlaying"), std::nullopt);
  recording::runGlobalQueues();
  recording::runMainQueue();
  EXPECT_THAT(engine->laterReplies, Each(Outcome(Value())));
  EXPECT_EQ(engine->laterReplies.size(), 4u);
  EXPECT_THAT(trace(), ElementsAre("async on main", "async on main", "async on userInitiated",
                                   "async on utility", "async on main", "async on main"));
}

}  // namespace
}  // namespace tapdeck
