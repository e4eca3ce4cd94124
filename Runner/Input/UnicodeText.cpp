#include "Runner/Input/UnicodeText.h"

#include <utf8proc.h>

#include <cstdint>

namespace tapdeck {
namespace {

constexpr int32_t kReplacementCharacter = 0xFFFD;
constexpr int32_t kCapitalIWithDotAbove = 0x0130;

struct CodePoint {
  int32_t value;
  size_t bytes;
};

/// The first code point of a text that is not empty.
CodePoint firstCodePoint(std::string_view text) {
  utf8proc_int32_t value = 0;
  const auto used = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                     static_cast<utf8proc_ssize_t>(text.size()), &value);
  if (used <= 0) return {kReplacementCharacter, 1};
  return {value, static_cast<size_t>(used)};
}

void append(std::string& text, int32_t codePoint) {
  utf8proc_uint8_t bytes[4];
  const auto count = utf8proc_encode_char(codePoint, bytes);
  text.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(count));
}

}  // namespace

std::string lowercased(std::string_view text) {
  std::string lower;
  while (!text.empty()) {
    const CodePoint point = firstCodePoint(text);
    text.remove_prefix(point.bytes);
    if (point.value == kCapitalIWithDotAbove) {
      // the one lower-case mapping to more than one character; the library knows only the others
      lower += "i\u0307";
    } else {
      append(lower, utf8proc_tolower(point.value));
    }
  }
  return lower;
}

std::vector<std::string_view> graphemeClusters(std::string_view text) {
  std::vector<std::string_view> clusters;
  size_t start = 0;
  size_t position = 0;
  utf8proc_int32_t state = 0;
  int32_t previous = 0;
  while (position < text.size()) {
    const CodePoint point = firstCodePoint(text.substr(position));
    if (position > 0 && utf8proc_grapheme_break_stateful(previous, point.value, &state) != 0) {
      clusters.push_back(text.substr(start, position - start));
      start = position;
    }
    previous = point.value;
    position += point.bytes;
  }
  if (position > start) clusters.push_back(text.substr(start));
  return clusters;
}

std::u16string utf16Units(std::string_view text) {
  std::u16string units;
  while (!text.empty()) {
    const CodePoint point = firstCodePoint(text);
    text.remove_prefix(point.bytes);
    if (point.value < 0x10000) {
      units.push_back(static_cast<char16_t>(point.value));
    } else {
      const int32_t offset = point.value - 0x10000;
      units.push_back(static_cast<char16_t>(0xD800 + (offset >> 10)));
      units.push_back(static_cast<char16_t>(0xDC00 + (offset & 0x3FF)));
    }
  }
  return units;
}

}  // namespace tapdeck
