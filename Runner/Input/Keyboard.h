#pragma once

#include <string_view>

#include "Runner/MainFlutterWindow.h"

namespace tapdeck {

// Synthetic keyboard events by key name, posted at the HID tap with the modifiers that `keyDown`
// holds. A name that no key bears posts nothing; what cannot be created is left out silently. Main
// thread only.

/// Presses and releases the key, 10 ms apart; blocks for that long. Never changes the held
/// modifiers, even for a modifier's own name.
void keyPress(const MainFlutterWindow& window, std::string_view key);

/// Adds the name's modifier flag, if it has one, and presses the key.
void keyDown(MainFlutterWindow& window, std::string_view key);

/// Takes the name's modifier flag away, if it has one, and releases the key.
void keyUp(MainFlutterWindow& window, std::string_view key);

}  // namespace tapdeck
