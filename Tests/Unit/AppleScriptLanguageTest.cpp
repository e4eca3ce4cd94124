#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "Tests/Unit/AppleScriptFixture.h"

namespace tapdeck::applescript {
namespace {

using Cases = std::vector<std::pair<std::string, std::string>>;

class AppleScriptLanguageTest : public AppleScriptTest {
 protected:
  void expect(const Cases& cases) {
    for (const auto& [source, result] : cases) EXPECT_EQ(run(source), result) << source;
  }
};

TEST_F(AppleScriptLanguageTest, ValuesHaveTheirOwnForms) {
  expect({{"42", "42"},
          {"1 + 2 - 4", "-1"},
          {"0.1 + 0.2", "0.30000000000000004"},
          {"0.00005 as text", "5.0E-5"},
          {"99999999999999999999", "1.0E+20"},
          {"\"a\" & tab & 1 ¬\n & (1 is 1)", "a\t1true"},
          {"(output volume of (get volume settings)) as text", "missing value"},
          {"not 1", "(-1700)"},
          {"SET x TO 1\nIf x Is 1 Then Return \"one\"\nreturn \"other\"", "one"},
          {"try\nset a to 1 + \"\"\nend try\na", "(-2753)"}});
}

TEST_F(AppleScriptLanguageTest, WordsBelongToApplications) {
  desktop.run(Application::music, playing());
  desktop.run(Application::vlc, playing());
  expect({{"tell application \"music\" to get name of current track", "Song"},
          {"tell application \"Music\" to get current item", "(-2741)"},
          {"tell application \"Winamp\" to playpause", "(-1728)"},
          {"tell application \"Spotify\" to playpause", "(-600)"},
          {R"(tell application "Music" to set player state to "x")", "(-10006)"},
          {"tell application \"Music\" to exists artwork 2 of current track", "false"},
          {"tell application \"Music\" to get current track",
           "current track of application \"Music\""}});
  const auto error =
      applescript::run("tell application \"Spotify\" to playpause", desktop).error.value();
  EXPECT_EQ(error.message, "Spotify got an error: Application isn’t running.");
  EXPECT_EQ(error.application, "Spotify");
  EXPECT_EQ(error.start, 30U);
  EXPECT_EQ(error.end, 39U);
  EXPECT_FALSE(error.isSyntaxError);
}

TEST_F(AppleScriptLanguageTest, SaysWhatItDoesNotKnow) {
  const Cases cases = {{"repeat 2 times\nend repeat", "“repeat” here"},
                       {"2 * 3", "“*”"},
                       {"1 is not 2", "“not” here"},
                       {"1 1", "a number here"},
                       {"if 1 is 1 then\nreturn 1\nend if", "what this line begins"},
                       {"return 1\nend tell", "“end” here"},
                       {R"("a\n")", "“\\” in a text"},
                       {"\"open", "a text without an end"},
                       {"1e999", "so large a number"},
                       {"é", "“é” here"},
                       {"\"\xFF\"", "what is no UTF-8 text"}};
  for (const auto& [source, what] : cases) {
    const auto error = applescript::run(source, desktop).error.value_or(Error());
    EXPECT_EQ(error.message, "This interpreter does not know " + what + ".") << source;
    EXPECT_TRUE(error.isSyntaxError);
  }
}

std::string repeated(const std::string& text, size_t times) {
  std::string all;
  for (size_t time = 0; time < times; ++time) all += text;
  return all;
}

TEST_F(AppleScriptLanguageTest, NoProgramIsTooMuch) {
  constexpr size_t kMany = 10000;
  for (const char* piece : {"(", "not ", "exists ", "tell application \"VLC\"\n", "try\n",
                            "if 1 is 1 then ", "1 & ", "get ", "POSIX file "}) {
    EXPECT_NE(applescript::run(repeated(piece, kMany) + "1", desktop).error, std::nullopt) << piece;
  }
  EXPECT_EQ(run("\"" + repeated("x", size_t{2} << 20) + "\""), "(-2741)");
  EXPECT_EQ(run("set a to \"aaaaaaaa\"\n" + repeated("set a to a & a\n", 40)), "(-108)");
  EXPECT_EQ(run(repeated("(", 20) + "1" + repeated(")", 20)), "1");
}

}  // namespace
}  // namespace tapdeck::applescript
