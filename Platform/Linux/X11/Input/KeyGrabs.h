#pragma once

#include "Platform/Linux/X11/Connection.h"
#include "Platform/Linux/X11/Keyboard/Keymap.h"

namespace tapdeck::x11 {

/// Whether another client would get a press of the key now by a passive grab on the root window, of
/// the core protocol or of the X Input extension. A grab for other modifiers than those that are on
/// does not count. The connection uses the X keyboard extension. Some round trips.
bool isKeyGrabbed(const Connection& connection, Keycode code);

}  // namespace tapdeck::x11
