#pragma once

#include <string>

#include "Runner/MainFlutterWindow.h"

namespace tapdeck {

/// Moves the focused window of the frontmost application just inside the top-left corner of the
/// display's usable area; a full-screen window leaves full screen first, the size stays. Needs
/// Accessibility trust, and may raise the system's prompt for it. That the display is unknown or
/// the window refused to move is written to standard output. Main thread only.
void moveWindowToDisplay(MainFlutterWindow& window, const std::string& displayId);

}  // namespace tapdeck
