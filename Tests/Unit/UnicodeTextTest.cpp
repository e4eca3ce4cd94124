#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "Runner/Input/UnicodeText.h"

namespace tapdeck {
namespace {

/// One line of Unicode's test data: "÷ 0020 × 0308 ÷ 0020 ÷ # comment".
std::vector<std::string> expectedClusters(const std::string& line) {
  std::vector<std::string> clusters;
  std::istringstream words(line.substr(0, line.find('#')));
  for (std::string word; words >> word;) {
    if (word == "÷") {
      clusters.emplace_back();
    } else if (word != "×") {
      const auto point = static_cast<char32_t>(std::stoul(word, nullptr, 16));
      clusters.back() += std::filesystem::path(std::u32string{point}).string();
    }
  }
  if (!clusters.empty()) clusters.pop_back();  // the line ends with a break
  return clusters;
}

TEST(UnicodeTextTest, ClustersBreakWhereUnicodesOwnTestDataSay) {
  std::ifstream data(GRAPHEME_BREAK_TEST);
  ASSERT_TRUE(data) << "Unicode's test data are not at " << GRAPHEME_BREAK_TEST;
  int cases = 0;
  for (std::string line; std::getline(data, line);) {
    const std::vector<std::string> expected = expectedClusters(line);
    if (expected.empty()) continue;
    ++cases;
    std::string text;
    for (const std::string& cluster : expected) text += cluster;
    const auto found = graphemeClusters(text);
    EXPECT_EQ(std::vector<std::string>(found.begin(), found.end()), expected) << line;
  }
  EXPECT_GT(cases, 500);
}

TEST(UnicodeTextTest, ClustersOfEveryday) {
  EXPECT_EQ(graphemeClusters("👩‍👩‍👧‍👦👍🏽🇩🇪🇫🇷").size(), 4u);
  EXPECT_EQ(graphemeClusters("\xff\xfe").size(), 2u) << "what is no UTF-8 is still something";
}

TEST(UnicodeTextTest, Utf16AndLowerCase) {
  EXPECT_EQ(utf16Units("a\u00e9\u20ac\U0001F600"), u"a\u00e9\u20ac\U0001F600");
  EXPECT_EQ(utf16Units("a\xff"), u"a\ufffd");
  EXPECT_EQ(lowercased("ÄΣЖẞ\u0130\u212A9"), "äσжßi\u0307k9");
}

}  // namespace
}  // namespace tapdeck
