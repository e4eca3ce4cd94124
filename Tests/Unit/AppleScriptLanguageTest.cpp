#include <string>
#include <vector>

#include "Tests/Unit/AppleScriptFixture.h"

namespace tapdeck::applescript {
namespace {

struct Case {
  std::string source;
  std::string result;
};

class AppleScriptLanguageTest : public AppleScriptTest {
 protected:
  void expect(const std::vector<Case>& cases) {
    for (const auto& [source, result] : cases) EXPECT_EQ(run(source), result) << source;
  }
};

TEST_F(AppleScriptLanguageTest, NumbersHaveTheirOwnForms) {
  expect({{"42", "42"},
          {"42.0", "42.0"},
          {"7 / 2 & \"\"", "3.5"},
          {"10 / 2", "5.0"},
          {"1 + 2 * 3 - -1", "8"},
          {"0.1 + 0.2", "0.30000000000000004"},
          {"12345.5", "1.23455E+4"},
          {"0.00005", "5.0E-5"},
          {"1e+16", "1.0E+16"},
          {"536870911 + 1", "5.36870912E+8"},
          {"99999999999999999999", "1.0E+20"},
          {"2.5 as integer", "2"},
          {"\" 12 \" + 1", "13"},
          {"1e300 as integer", "(-1700)"},
          {"1 / 0", "(-2701)"},
          {"1e999", "(-2741)"},
          {"missing value + 10", "(-1700)"}});
}

TEST_F(AppleScriptLanguageTest, TextsAreQuotedJoinedAndCompared) {
  expect({{R"("a\"b\\c\td\n")", "a\"b\\c\td\n"},
          {"\"a\" & tab & 1 & true & missing value", "a\t1truemissing value"},
          {"\"Ä\" = \"ä\" and \"a\" is not \"b\"", "true"},
          {R"("abc" contains "B" and "abc" starts with "AB")", "true"},
          {"1 = 1.0 and 1 is not \"1\"", "true"},
          {"2 ≥ 1 and 1 is less than or equal to 1 and not (1 > 2)", "true"},
          {"\"TRUE\" as boolean", "(-1700)"},
          {"\"a\" ¬ \r\n & \"b\" -- joined", "ab"},
          {"(* a (* nested *) comment *) \"x\" # and another", "x"},
          {"\"open", "(-2741)"},
          {R"("\q")", "(-2741)"},
          {"\"\xFF\"", "(-2741)"}});
}

TEST_F(AppleScriptLanguageTest, ProgramsTakeTheirCourse) {
  expect({{"", ""},
          {"SET x TO 1\nIf X IS 1 Then Return \"one\"\nreturn \"other\"", "one"},
          {"set x to 2\nif x = 1 then\nreturn 1\nelse if x = 2 then\nreturn 2\nelse\nreturn 3\n"
           "end if",
           "2"},
          {"copy 5 to |odd name|\n|odd name|", "5"},
          {"try\nerror \"no\" number 7\non error m number n\nreturn m & n\nend try", "no7"},
          {"try\n1 / 0\nend try\nreturn \"on\"", "on"},
          {"try\nerror \"a\"\non error m\nerror m & \"b\" number 5\nend try", "(5)"},
          {"if 1 then return 2", "(-1700)"},
          {"false and 1 / 0 = 1", "false"},
          {"try\nset a to 1 / 0\nend try\na", "(-2753)"},
          {"nobody", "(-2741)"},
          {"set nobody to nobody's business", "(-2741)"},
          {"return 1\nend tell", "(-2741)"},
          {"try\n1", "(-2741)"}});
}

TEST_F(AppleScriptLanguageTest, WordsBelongToApplications) {
  desktop.run(Application::music, playing());
  desktop.run(Application::vlc, playing());
  expect({{"tell application \"music\" to get the name of current track", "Song"},
          {"tell application \"Music\" to get current track's artist", "Artist"},
          {"tell application \"Music\"\ntell current track to return its album\nend tell", "Album"},
          {"tell application \"Music\" to get player state", "playing"},
          {"tell application \"Music\" to get current item", "(-2741)"},
          {"tell application \"Music\" to sleep", "(-2741)"},
          {"tell application \"Music\" to play next", "(-2741)"},
          {"tell application \"Winamp\" to play", "(-1728)"},
          {"tell application \"Spotify\" to play", "(-600)"},
          {"application \"Spotify\" is running", "false"},
          {R"(tell application "Music" to set name of current track to "x")", "(-10006)"},
          {"tell application \"Music\" to get raw data of current track", "(-1728)"},
          {"tell application \"Music\" to exists artwork 2 of current track", "false"},
          {"tell application \"Music\" to get current track",
           "current track of application \"Music\""}});
  const auto error =
      applescript::run("tell application \"Spotify\" to play", desktop).error.value();
  EXPECT_EQ(error.message, "Spotify got an error: Application isn’t running.");
  EXPECT_EQ(error.application, "Spotify");
  EXPECT_EQ(error.start, 30U);
  EXPECT_EQ(error.end, 34U);
  EXPECT_FALSE(error.isSyntaxError);
}

std::string repeated(const std::string& text, size_t times) {
  std::string all;
  for (size_t time = 0; time < times; ++time) all += text;
  return all;
}

TEST_F(AppleScriptLanguageTest, NoProgramIsTooMuch) {
  constexpr size_t kMany = 10000;
  for (const char* piece :
       {"(", "not ", "- ", "exists ", "tell it\n", "try\n", "if true then\n", "name of ", "1 & ",
        "1 as text as text ", "get ", "POSIX file ", "if true then "}) {
    EXPECT_NE(applescript::run(repeated(piece, kMany) + "1", desktop).error, std::nullopt) << piece;
  }
  EXPECT_EQ(run("\"" + repeated("x", size_t{2} << 20) + "\""), "(-2741)");
  EXPECT_EQ(run("set a to \"aaaaaaaa\"\n" + repeated("set a to a & a\n", 40)), "(-108)");
  EXPECT_EQ(run(repeated("(", 20) + "1" + repeated(")", 20)), "1");
}

}  // namespace
}  // namespace tapdeck::applescript
