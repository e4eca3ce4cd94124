#pragma once

#include <string_view>

namespace tapdeck {

/// Types the text (UTF-8) into whatever has the keyboard focus: one key press and release per
/// extended grapheme cluster that carry the cluster itself, 5 ms apart, whatever the keyboard
/// layout and the modifiers held. Blocks for 5 ms per cluster. Main thread only.
void typeUnicodeText(std::string_view text);

}  // namespace tapdeck
