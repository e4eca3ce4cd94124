#pragma once

#include "Runner/Input/MouseButtons.h"

namespace tapdeck {

// What "keyDown" and "mouseDown" have pressed and nothing has released since, for a process that is
// about to end: the system goes on holding what a dead process pressed. Any thread.

void noteKey(CGKeyCode key, bool down);
void noteButton(const MouseButtonEventTypes& button, bool down);

/// Releases all of it, the last pressed first, keys without modifiers and buttons at the pointer.
/// For a platform whose own events do not end with the process.
void letGoOfInput();

}  // namespace tapdeck
