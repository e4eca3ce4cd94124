#pragma once

#include <xcb/xcb.h>

#include <map>

#include "Platform/Linux/X11/Keyboard/Keymap.h"

namespace tapdeck::x11 {

/// New mappings for some keys.
using KeyMappings = std::map<Keycode, KeyMapping>;

// Every client is told of every change and reads the map anew, so that a change of many keys is as
// dear as one of one key. Each of these sends one change of the core keyboard's map, for all of the
// `mappings` (one at least) at once. `now` is the map as it stands, and becomes what it is
// afterwards. The caller flushes.
//
// The server holds the number of a key's actions against the number of keysyms that it had before
// the request: keysyms and actions cannot change together. It refuses more actions than keysyms.

/// How the server tells of a change: some programs (Chromium) read the map anew only when they hear
/// of a new keyboard.
enum class ToldAs { change, newKeyboard };
void sendKeysyms(xcb_connection_t* connection, Keymap& now, const KeyMappings& mappings,
                 ToldAs toldAs = ToldAs::change);
void sendActions(xcb_connection_t* connection, Keymap& now, const KeyMappings& mappings);

}  // namespace tapdeck::x11
