#pragma once

#include <algorithm>
#include <string>

#include "Runner/Input/UnicodeText.h"

namespace tapdeck::testing {

// each in what its speakers write, with capitals and punctuation; then emoji of every build
const char* const kPassages[] = {
    "The quick brown fox jumps over the lazy dog. PACK MY BOX WITH FIVE DOZEN LIQUOR JUGS!\n",
    "\tif (a[0] != '\\\\' && b <= ~0x7F) { return \"x=\" + y^2 * 100% | z; } // `#$@?\n",
    "Zwölf Boxkämpfer jagen Viktor quer über den großen Sylter Deich. ÄÖÜ ß €\n",
    "Dès Noël où un zéphyr haï me vêt de glaçons würmiens, je dîne d’exquis rôtis au kir. ÉÀÇŒ\n",
    "Příliš žluťoučký kůň úpěl ďábelské ódy. Zażółć gęślą jaźń. Türkçe: İıŞşĞğ\n",
    "Ξεσκεπάζω την ψυχοφθόρα βδελυγμία. Τάχιστη αλώπηξ βαφής ψημένη γη.\n",
    "Съешь ещё этих мягких французских булок, да выпей же чаю. ПОДЪЁМ!\n",
    "صِف خَلقَ خَودِ كَمِثلِ الشَمسِ إِذ بَزَغَت، يَحظى الضَجيعُ بِها؟\n",
    "いろはにほへと ちりぬるを わかよたれそ つねならむ。カタカナ\n",
    "天地玄黄宇宙洪荒日月盈昃辰宿列张寒来暑往秋收冬藏闰余成岁律吕调阳。\n",
    "다람쥐 헌 쳇바퀴에 타고파. e\u0301 a\u0308 (combining)\n",
    // emoji with skin tones and joiners, flags, a keycap
    "\U0001F44D\U0001F3FD\U0001F469\U0001F3FF\u200D\U0001F680\U0001F468\u200D\U0001F469"
    "\u200D\U0001F467\u200D\U0001F466\U0001F3F3\uFE0F\u200D\U0001F308\U0001F1E9\U0001F1EA"
    "\U0001F1EB\U0001F1F7❤\uFE0F1\uFE0F⃣\U0001F937\U0001F3FB\u200D♀\uFE0F\U0001F600\t"
    "\U0001F9D1\U0001F3FE\u200D\U0001F91D\u200D\U0001F9D1\U0001F3FB\n",
};

inline void append(std::string& text, char32_t character) {
  text += static_cast<char>(0xE0 | (character >> 12));
  text += static_cast<char>(0x80 | (character >> 6 & 0x3F));
  text += static_cast<char>(0x80 | (character & 0x3F));
}

/// At least so many characters as people see them, of many scripts: with more different ones than
/// a keyboard's map has room for, and every one of ASCII's.
inline std::string longText(size_t clusters = 2000) {
  std::string text;
  char32_t ideograph = 0x4E00;
  for (int round = 0; graphemeClusters(text).size() < clusters; ++round) {
    for (const char* passage : kPassages) {
      text += passage;
      // near and far ones by turns: new, then known again, then new
      for (int i = 0; i < 12; ++i) append(text, ideograph + static_cast<char32_t>(i * 7));
      ideograph += round % 2 == 0 ? 97 : 5;
    }
    text += "aaaaaabbbb    \n\n\n\t\tIIIIllll''''````\n";
  }
  return text;
}

/// Where and how they differ first, for people.
inline std::string differenceOf(const std::string& sent, const std::string& received) {
  const auto [here, there] =
      std::mismatch(sent.begin(), sent.end(), received.begin(), received.end());
  const auto place = static_cast<size_t>(here - sent.begin());
  return "at byte " + std::to_string(place) + " of " + std::to_string(sent.size()) + ": sent \"" +
         sent.substr(place, 40) + "\", received \"" +
         received.substr(static_cast<size_t>(there - received.begin()), 40) + "\"";
}

}  // namespace tapdeck::testing
