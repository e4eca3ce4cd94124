#include "Runner/Media/Text.h"

#include <algorithm>
#include <iterator>

namespace tapdeck {
namespace {

constexpr std::string_view kTab = "\t";

constexpr std::string_view kWhiteSpace[] = {
    kTab,           "\n",           "\v",           "\f",           "\r",           " ",
    "\xC2\x85",     "\xC2\xA0",     "\xE1\x9A\x80", "\xE2\x80\x80", "\xE2\x80\x81", "\xE2\x80\x82",
    "\xE2\x80\x83", "\xE2\x80\x84", "\xE2\x80\x85", "\xE2\x80\x86", "\xE2\x80\x87", "\xE2\x80\x88",
    "\xE2\x80\x89", "\xE2\x80\x8A", "\xE2\x80\xA8", "\xE2\x80\xA9", "\xE2\x80\xAF", "\xE2\x81\x9F",
    "\xE3\x80\x80"};

/// Takes the white space that `isSpace` accepts off both ends.
template <typename IsSpace>
std::string_view trim(std::string_view text, IsSpace isSpace) {
  const auto atStart = [&](std::string_view space) {
    return isSpace(space) && text.starts_with(space);
  };
  const auto atEnd = [&](std::string_view space) {
    return isSpace(space) && text.ends_with(space);
  };
  const auto* const none = std::end(kWhiteSpace);
  for (const auto* found = none;
       (found = std::find_if(std::begin(kWhiteSpace), none, atStart)) != none;) {
    text.remove_prefix(found->size());
  }
  for (const auto* found = none;
       (found = std::find_if(std::begin(kWhiteSpace), none, atEnd)) != none;) {
    text.remove_suffix(found->size());
  }
  return text;
}

}  // namespace

std::string_view trimmed(std::string_view text) {
  return trim(text, [](std::string_view) { return true; });
}

std::string_view trimmedUpToTabs(std::string_view text) {
  return trim(text, [](std::string_view space) { return space != kTab; });
}

}  // namespace tapdeck
