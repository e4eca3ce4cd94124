#pragma once

#include <CoreGraphics/CoreGraphics.h>

namespace tapdeck::platform {

// Notes for a platform that needs the host's word on what it holds pressed, to release it when the
// process ends: a Mac goes on holding what a dead process pressed. Where the platform's events know
// themselves what they hold, these do nothing. Any thread.

/// The host presses the key (before it does) or has released it.
void noteKey(CGKeyCode key, bool down);

/// The same for a mouse button, with the type of the event that releases it.
void noteButton(CGMouseButton button, CGEventType release, bool down);

}  // namespace tapdeck::platform
