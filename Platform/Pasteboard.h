#pragma once

#include <optional>
#include <string>

namespace tapdeck::platform {

// NSPasteboard.generalPasteboard, type NSPasteboardTypeString. UTF-8. Main thread only.

/// The pasteboard's text; absent when it holds none.
std::optional<std::string> pasteboardString();

/// clearContents: takes everything off the pasteboard.
void clearPasteboard();

/// setString:forType: puts the text on the pasteboard, where it stays after the process's
/// connection to it ends.
void setPasteboardString(const std::string& text);

}  // namespace tapdeck::platform
