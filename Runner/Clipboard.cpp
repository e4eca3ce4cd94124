#include "Runner/Clipboard.h"

#include "Platform/Pasteboard.h"

namespace tapdeck {

std::string clipboardText() {
  return platform::pasteboardString().value_or("");
}

void setClipboardText(const std::string& text) {
  platform::clearPasteboard();
  platform::setPasteboardString(text);
}

}  // namespace tapdeck
