#include <cmath>

#include "Runner/Media/Text.h"
#include "Tests/Unit/MediaTest.h"

namespace tapdeck {
namespace {

constexpr const char* kArtFile = "/var/folders/me/T/tapdeck_art.bin";

class MediaNowPlayingTest : public MediaTest {
 protected:
  MediaNowPlayingTest() { script().media.jpeg = std::vector<uint8_t>{0xFF, 0xD8, 0xFF}; }

  Value nowPlaying(const Value& includeArt = Value()) {
    EXPECT_EQ(outcome("getNowPlaying", "includeArt", includeArt), std::nullopt);
    recording::runGlobalQueues();
    recording::runMainQueue();
    return std::get<Value>(engine->laterReplies.back());
  }
  void plays(const std::string& player, const Child& art) {
    run({player});
    answers[{"info", player}] = {"S\tA\tB\t1000\t2\tplaying\tid"};
    answers[{"art", player}] = art;
  }
  /// What of the reply stands under the key; a text for what is not there.
  Value told(const char* key, const Value& includeArt = Value(true)) {
    const Value all = nowPlaying(includeArt);
    const auto* map = all.getIf<ValueMap>();
    const Value* found = map != nullptr ? map->find(key) : nullptr;
    return found != nullptr ? *found : Value("absent");
  }
};

Value info(const char* title, const char* artist, const char* album, double duration,
           double position, bool playing, bool canSeek, const char* app, const char* trackId) {
  return Value(mapOf("title", title, "artist", artist, "album", album, "duration", duration,
                     "position", position, "playing", playing, "canSeek", canSeek, "app", app,
                     "trackId", trackId));
}

TEST_F(MediaNowPlayingTest, RepliesAreReadFieldByField) {
  const std::tuple<const char*, const char*, Value> rows[] = {
      {"Spotify", "Song\tArtist\tAlbum\t215000\t12.5\tplaying\tspotify:track:1\n",
       info("Song", "Artist", "Album", 215, 12.5, true, true, "Spotify", "spotify:track:1")},
      {"VLC", "\u00A0Clip \t\t\t10\t5\tTRUE\t\n",
       info("Clip", "", "", 10, 5, true, true, "VLC", "VLC|Clip|")},
      {"Music", " Song\t A \t\t-3\t-1\tpaused\t\textra\n",
       info("Song", " A ", "", 0, 0, false, false, "Music", "Music|Song| A ")},
      {"Music", "S\tA\tB\t1.5E+2\tmissing value\tPlaying\tid\u2003\r\n",
       info("S", "A", "B", 150, 0, true, true, "Music", "id")},
      {"Music", "S\tA\tB\t12,5\t0x10\tplaying now\tid\tmore",
       info("S", "A", "B", 0, 0, false, false, "Music", "id")},
      {"Music", "S\tA\tB\t1e999\tinf\tfalse\tid",
       info("S", "A", "B", 0, 0, false, false, "Music", "id")},
      // the white space before the first field goes, and the field with it
      {"Music", "\t \tS\tA\tB\t1\t2\tplaying\t",
       info("S", "A", "B", 1, 2, true, true, "Music", "Music|S|A")},
      {"Music", " \tA\tB\t1\t2\tplaying\tid", Value()},
      {"Music", "", Value()},
      {"Music", "S\tA\tB\t1\t2\tplaying\n", Value()},
      {"Music", "S\tA\xFF\tB\t1\t2\tplaying\tid", Value()},
  };
  for (const auto& [player, line, value] : rows) {
    run({player});
    answers[{"info", player}] = {line};
    EXPECT_EQ(nowPlaying(), value) << line;
  }
  run({"Music"});
  answers[{"info", "Music"}] = {"S\tA\tB\t-0\t-0.0\tplaying\tid"};
  for (const char* key : {"duration", "position"}) {
    EXPECT_FALSE(std::signbit(*told(key).getIf<double>())) << key;
  }
}

TEST_F(MediaNowPlayingTest, TheFirstPlayerWithSomethingToTellIsIt) {
  run({"VLC", "Spotify", "Music"});
  answers[{"info", "Music"}] = {"none", 0, 3};
  answers[{"info", "Spotify"}] = {"Song\t\t\t\t\tpaused\tid", 1};
  answers[{"info", "VLC"}] = {"Clip\t\t\t10\t5\ttrue\t/clip"};
  const double start = script().uptime;
  EXPECT_EQ(told("app", Value()), Value("VLC"));
  EXPECT_NEAR(script().uptime, start + 2.0, 0.04);
  EXPECT_THAT(steps(), ElementsAre("async on utility", "info Music", "poll", "terminate",
                                   "log ⚠️ AppleScript timed out after 2.0s", "info Spotify",
                                   "info VLC", "read pipe", "async on main"));
}

TEST_F(MediaNowPlayingTest, CoversComeFromAFileThatGoesAgain) {
  plays("Music", {"ok\n"});
  script().media.files[kArtFile] = {1, 2, 3};
  script().media.imageSize = CGSize{640, 480};
  EXPECT_EQ(told("art"), Value("/9j/"));
  EXPECT_THAT(steps(),
              ElementsAre("async on utility", "info Music", "read pipe", "art Music", "read pipe",
                          std::string("read ") + kArtFile, std::string("remove ") + kArtFile,
                          "200x150 bitmap is (200,150) points",
                          "copy (640,480) at (0,0) of image of 3 bytes onto 200x150 bitmap",
                          "JPEG of 200x150 bitmap compressed by 0.720000", "async on main"));

  EXPECT_EQ(told("art", Value("yes")), Value("absent"));
  script().media.jpeg.reset();
  EXPECT_EQ(told("art"), Value("absent"));
  script().media.imageSize.reset();
  EXPECT_EQ(told("art"), Value("absent"));
  trace();
  for (const Child& child : {Child{"none"}, Child{"ok ok"}, Child{"ok", 1}}) {
    answers[{"art", "Music"}] = child;
    EXPECT_EQ(told("art"), Value("absent"));
    EXPECT_EQ(steps().back(), "async on main");
  }
  answers[{"art", "Music"}] = {"ok", 0, 3.1};
  nowPlaying(Value(true));
  EXPECT_THAT(steps(), Contains("log ⚠️ AppleScript timed out after 3.0s"));
}

TEST_F(MediaNowPlayingTest, ThumbnailsKeepTheirShapeAndNeverGrow) {
  plays("Music", {"ok"});
  script().media.files[kArtFile] = {1};
  const std::pair<CGSize, std::string> rows[] = {{{100, 50}, "100x50"}, {{1000, 1}, "200x1"},
                                                 {{1, 1000}, "1x200"},  {{400, 201}, "200x101"},
                                                 {{0.25, 0.25}, "1x1"}, {{0, 10}, ""}};
  for (const auto& [size, bitmap] : rows) {
    script().media.imageSize = size;
    nowPlaying(Value(true));
    const std::string jpeg = *(trace().end() - 2);
    EXPECT_EQ(jpeg.starts_with("JPEG of " + bitmap + " bitmap"), !bitmap.empty()) << jpeg;
  }
}

TEST_F(MediaNowPlayingTest, SpotifysCoversAreFetchedOverTlsOnly) {
  plays("Spotify", {"https://covers/1\n"});
  script().media.imageSize = CGSize{10, 10};
  script().media.download = {1, 2};
  EXPECT_EQ(told("art"), Value("/9j/"));
  const Trace lines = steps();
  EXPECT_EQ(lines[5], "download https://covers/1 within 3.000000");
  EXPECT_EQ(lines[6], "wait 3.500000");
  EXPECT_EQ(lines[8], "copy (10,10) at (0,0) of image of 2 bytes onto 10x10 bitmap");

  script().media.download.reset();
  EXPECT_EQ(told("art"), Value("absent"));
  script().media.download = {1, 2};
  script().media.downloadSeconds = 3.6;
  EXPECT_EQ(told("art"), Value("absent"));
  // it comes all the same, to nobody
  recording::completeDownloads();
  script().media.downloadSeconds = 0;
  answers[{"art", "Spotify"}] = {"https://covers/1", 0, 2.1};
  trace();
  EXPECT_EQ(told("art"), Value("absent"));
  EXPECT_THAT(steps(), Contains("log ⚠️ AppleScript timed out after 2.0s"));
  for (const char* address : {"http://covers/1", "HTTPS://covers/1", "httpss://x", "covers", ""}) {
    answers[{"art", "Spotify"}] = {address};
    EXPECT_EQ(told("art"), Value("absent")) << address;
    EXPECT_EQ(steps().size(), 6u) << address;
  }

  plays("VLC", {"https://covers/1"});
  EXPECT_EQ(told("art"), Value("absent"));
  EXPECT_EQ(steps().size(), 4u);
}

TEST(TrimmingTest, TakesUnicodesWhiteSpaceAndNothingElse) {
  EXPECT_EQ(trimmed("\t\v\f\r\n \u0085\u00A0\u1680\u2000\u200A\u2028\u2029\u202F\u205F\u3000"), "");
  EXPECT_EQ(trimmed("\u2003a \t b\u3000\n"), "a \t b");
  for (const char* kept : {"\u200B", "\uFEFF", "\u180E", "\x1C", "\u0084", "\u2030"}) {
    EXPECT_EQ(trimmed(kept), kept);
  }
  EXPECT_EQ(trimmedUpToTabs(" \n\t a \t\t\r\n"), "a \t\t");
}

}  // namespace
}  // namespace tapdeck
