#pragma once

#include <string_view>

namespace tapdeck {

/// The text without the white space and line ends at its two ends: the characters of the Unicode
/// property White_Space. UTF-8; a view into `text`. Any thread.
std::string_view trimmed(std::string_view text);

/// The same, but a tab ends what is taken off: it parts fields, also empty ones.
std::string_view trimmedUpToTabs(std::string_view text);

}  // namespace tapdeck
