#pragma once

#include <xcb/xcb.h>

#include <map>

#include "Platform/Linux/X11/Keyboard/Keymap.h"

namespace tapdeck::x11 {

/// New mappings for some keys.
using KeyMappings = std::map<Keycode, KeyMapping>;

// Every client is told of every change and reads the map again, so that a change of many keys costs
// as much as that of one. Each of these functions changes all `mappings` (at least one) of the core
// keyboard's map in one request (SetMap). `now` is the map before the request, and is updated to
// the map after it. The caller flushes.
//
// Keysyms and actions need a request each: the server compares the number of a key's new actions
// with the number of keysyms that it had before the request, and refuses more actions than keysyms.

/// The event by which the server tells clients of the change: some programs (Chromium) read the map
/// again only after XkbNewKeyboardNotify.
enum class NotifyAs { mapNotify, newKeyboardNotify };
void sendKeysyms(xcb_connection_t* connection, Keymap& now, const KeyMappings& mappings,
                 NotifyAs notifyAs = NotifyAs::mapNotify);
void sendActions(xcb_connection_t* connection, Keymap& now, const KeyMappings& mappings);

}  // namespace tapdeck::x11
