#pragma once

#include <string>

namespace tapdeck {

// The general pasteboard's text, UTF-8. Main thread only.

/// The text, or the empty string when the pasteboard holds none.
std::string clipboardText();

/// Replaces whatever the pasteboard holds by the text.
void setClipboardText(const std::string& text);

}  // namespace tapdeck
