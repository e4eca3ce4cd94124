#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "Runner/Media/PlayerScripts.h"
#include "Tests/Support/Surroundings.h"
#include "Tests/Unit/AppleScriptFixture.h"

namespace tapdeck::applescript {
namespace {

using namespace ::testing;

class AppleScriptProgramsTest : public AppleScriptTest {};

constexpr Application kPlayers[] = {Application::music, Application::spotify, Application::vlc};

TEST_F(AppleScriptProgramsTest, TellWhatPlaysInEachApplicationsUnits) {
  for (const Application player : kPlayers) desktop.run(player, playing());
  const std::string music = run(nowPlayingScript("Music"));
  EXPECT_THAT(music, ::testing::MatchesRegex(
                         "Song\tArtist\tAlbum\t215\\.0\t12\\.5\tplaying\t[0-9A-F]{16}"));
  EXPECT_EQ(run(nowPlayingScript("Spotify")),
            "Song\tArtist\tAlbum\t215000\t12.5\tplaying\tspotify:track:4uLU6");
  EXPECT_EQ(run(nowPlayingScript("VLC")), "Song\t\t\t215\t12\ttrue\t/music/a song.ogg");
  EXPECT_EQ(run(spotifyArtworkScript()), "file:///cover.jpg");

  // a player that has one id for all it plays
  desktop.players.at(Application::music).state.track->title = "Another";
  const std::string another = run(nowPlayingScript("Music"));
  EXPECT_NE(another.substr(another.rfind('\t')), music.substr(music.rfind('\t')));
}

TEST_F(AppleScriptProgramsTest, TellWhatIsKnownAndNothingElse) {
  for (const Application player : kPlayers) {
    PlayerState state = playing(media::PlaybackStatus::paused);
    *state.track = {.title = {},
                    .artist =
                        "a\tb\nc\x7F\xC2\x85"
                        "d\xE2\x80\xA8",
                    .album = {},
                    .id = {},
                    .url = "https://radio.example/live%20stream",
                    .artUrl = {},
                    .length = {}};
    desktop.run(player, state);
  }
  EXPECT_THAT(run(nowPlayingScript("Music")),
              ::testing::StartsWith("live stream\ta b c  d \t\t0.0\t12.5\tpaused\t"));
  EXPECT_EQ(run(nowPlayingScript("Spotify")), "live stream\ta b c  d \t\t0\t12.5\tpaused\t");
  EXPECT_EQ(run(nowPlayingScript("VLC")),
            "live stream\t\t\t-1\t12\tfalse\thttps://radio.example/live%20stream");
  for (const auto& [url, title] : {std::pair("file:///100%25.ogg", "100%.ogg"),
                                   {"https://r/100%25", "100%"},
                                   {"https://r/%FF%ZZ", "%FF%ZZ"}}) {
    desktop.players.at(Application::vlc).state.track->url = url;
    EXPECT_THAT(run(nowPlayingScript("VLC")), ::testing::StartsWith(std::string(title) + "\t"));
  }
  desktop.players.at(Application::vlc).state.track->title = std::string(100000, 'x');
  EXPECT_LT(run(nowPlayingScript("VLC")).size(), size_t{4096});
}

TEST_F(AppleScriptProgramsTest, AskForStateAndTrack) {
  const std::tuple<PlayerState, const char*, const char*> cases[] = {
      {playing(), "true", "true"},
      {playing(media::PlaybackStatus::paused), "false", "true"},
      {PlayerState(), "false", "false"}};
  for (const char* name : {"Music", "Spotify", "VLC"}) {
    const auto expectAll = [&](const char* isPlaying, const char* hasTrack, const char* what) {
      EXPECT_EQ(run(stateScript(name)), isPlaying) << name << what;
      EXPECT_EQ(run(trackScript(name)), hasTrack) << name << what;
      EXPECT_EQ(run(nowPlayingScript(name)) != "none", hasTrack == std::string("true"))
          << name << what;
    };
    expectAll("false", "false", " is not there");
    auto& player = desktop.run(applicationNamed(name).value());
    for (const auto& [state, isPlaying, hasTrack] : cases) {
      player.state = state;
      expectAll(isPlaying, hasTrack, " answers");
    }
    player.state = playing();
    player.failure = ScriptError{kTimedOut, "AppleEvent timed out.", ""};
    expectAll("false", "false", " does not answer");
  }
}

TEST_F(AppleScriptProgramsTest, CommandPlayers) {
  for (const Application player : kPlayers) desktop.run(player, playing());
  const auto is = [](Command command) { return std::to_string(static_cast<int>(command)); };
  const std::pair<std::string, std::string> cases[] = {
      {commandScript("Music", "playpause"), "command " + is(Command::playPause)},
      {commandScript("Spotify", "next track"), "command " + is(Command::next)},
      {commandScript("VLC", "play"), "command " + is(Command::playPause)},
      {commandScript("VLC", "previous"), "command " + is(Command::previous)},
      {commandScript("Music", "set player position to 42.5"), "seek 42500000"},
      {commandScript("Music", "set player position to 1e+16"), "seek 1000000000000000000"},
      {commandScript("VLC", "set current time to 83"), "seek 83000000"},
      {commandScript("VLC", "set current time to 9223372036854775807"), "seek 1000000000000000000"},
  };
  for (const auto& [source, trace] : cases) {
    desktop.trace.clear();
    EXPECT_EQ(run(source), "") << source;
    EXPECT_THAT(desktop.trace, ElementsAre(trace)) << source;
  }
}

TEST_F(AppleScriptProgramsTest, WriteTheCoverToAFile) {
  const TemporaryFolder folder;
  const std::filesystem::path path = folder.path / "cover.bin";
  std::ofstream(path) << "what was there before";
  EXPECT_EQ(run(artworkScript("Music", path)), "none") << "no player";
  auto& player = desktop.run(Application::music, playing());
  EXPECT_EQ(run(artworkScript("Music", path)), "ok");
  EXPECT_EQ(contentsOf(path), std::string("\xFF\xD8\0\xFF", 4));
  EXPECT_EQ(run(artworkScript("Music", folder.path / "nowhere" / "cover.bin")), "none");
  const std::filesystem::path link = folder.path / "link";
  std::filesystem::create_symlink(path, link);
  EXPECT_EQ(run(artworkScript("Music", link)), "none") << "may be another user's trap";
  for (const char* url : {"", "file:///gone.jpg"}) {
    player.state.track->artUrl = url;
    EXPECT_EQ(run(artworkScript("Music", path)), "none") << url;
  }
}

}  // namespace
}  // namespace tapdeck::applescript
