#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tapdeck {

// Text in UTF-8, by the rules of the Unicode Standard. Bytes that are not UTF-8 are taken one at a
// time as U+FFFD. Any thread.

/// Full lower-casing by the context-free mappings: U+0130 becomes two characters.
std::string lowercased(std::string_view text);

/// The extended grapheme clusters of UAX #29, in order; views into `text`.
std::vector<std::string_view> graphemeClusters(std::string_view text);

/// The text's UTF-16 code units.
std::u16string utf16Units(std::string_view text);

}  // namespace tapdeck
