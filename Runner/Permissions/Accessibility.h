#pragma once

#include "Runner/MainFlutterWindow.h"

namespace tapdeck {

// Accessibility trust: the user's permission to inject events and to move other applications'
// windows. Main thread only.

/// The trust gate. Whether the process is trusted, for operations that go on only when it is. Trust
/// once seen is not asked for again; while it is missing the system's prompt is raised at most once
/// in the process, here or by `requestAccessibilityPermission`.
bool accessibilityGate(MainFlutterWindow& window);

/// Asks the system and stores the answer in `_isAccessibilityTrusted`. Never prompts.
bool refreshAccessibilityTrust(MainFlutterWindow& window);

/// Asks the system; raises its prompt each time trust is missing. Stores and gives the answer.
bool requestAccessibilityPermission(MainFlutterWindow& window);

/// Opens the Accessibility pane of the system's settings.
void openAccessibilitySettings();

}  // namespace tapdeck
