#pragma once

#include <string_view>

namespace tapdeck {

/// The text without the white space and line ends at its two ends: the characters of the Unicode
/// property White_Space. UTF-8; a view into `text`. Any thread.
std::string_view trimmed(std::string_view text);

/// The same, but at the end of the text only up to a tab: it parts fields, and the last ones may be
/// empty.
std::string_view trimmedUpToTabs(std::string_view text);

}  // namespace tapdeck
