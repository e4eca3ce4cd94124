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

enum class Tabs { trim, keep };

std::string_view trimmedAtStart(std::string_view text) {
  const auto* const none = std::end(kWhiteSpace);
  const auto starts = [&](std::string_view space) { return text.starts_with(space); };
  for (const auto* found = none;
       (found = std::find_if(std::begin(kWhiteSpace), none, starts)) != none;) {
    text.remove_prefix(found->size());
  }
  return text;
}

std::string_view trimmedAtEnd(std::string_view text, Tabs tabs) {
  const auto* const none = std::end(kWhiteSpace);
  const auto ends = [&](std::string_view space) {
    return (tabs == Tabs::trim || space != kTab) && text.ends_with(space);
  };
  for (const auto* found = none;
       (found = std::find_if(std::begin(kWhiteSpace), none, ends)) != none;) {
    text.remove_suffix(found->size());
  }
  return text;
}

}  // namespace

std::string_view trimmed(std::string_view text) {
  return trimmedAtEnd(trimmedAtStart(text), Tabs::trim);
}

std::string_view trimmedUpToTabs(std::string_view text) {
  return trimmedAtEnd(trimmedAtStart(text), Tabs::keep);
}

}  // namespace tapdeck
