#pragma once

#include <array>
#include <optional>

#include "Platform/Linux/X11/Keyboard/Keymap.h"

namespace tapdeck::x11 {

// A text key is a keycode with four characters of typed text, one in each group. No modifier
// chooses among them. Its action (RedirectKey) has the server deliver the key without any modifier:
// neither the Caps Lock that is on nor a Control that is held, by this program or by a person,
// reaches the application, while nothing of the keyboard's state changes.
//
// Groups rather than levels: levels that held modifiers do not change would need a new key type,
// and programs on Xlib do not read changed key types again.

inline constexpr int kTextGroups = 4;

/// One group of a text key. The server may be made to deliver another keycode in its place (that of
/// the real Return key, say).
struct TextGroup {
  Keysym keysym = kNoKeysym;
  std::optional<Keycode> deliveredAs;
};
KeyMapping textKey(Keycode code, const std::array<TextGroup, kTextGroups>& groups);
/// Whether `key` is what textKey makes: a process before this one may have left it.
bool isTextKey(const KeyMapping& key);

}  // namespace tapdeck::x11
