#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <optional>
#include <vector>

#include "Platform/Linux/X11/Keyboard/Keymap.h"

namespace tapdeck::quartz {

/// What a key of the US keyboard gives without and with Shift; `shifted` is 0 for a key that is not
/// for text.
struct UsKey {
  Keysym plain = kNoKeysym;
  Keysym shifted = kNoKeysym;
};

/// The key of a virtual key code (kVK_); absent for a code that has no key here.
std::optional<UsKey> usKeyFor(CGKeyCode code);
/// The key of a system key type (NX_KEYTYPE_) such as play, next and previous.
std::optional<UsKey> mediaKeyFor(uint32_t keyType);
/// The virtual key codes of the modifiers in `flags`.
std::vector<CGKeyCode> modifierKeysIn(CGEventFlags flags);

/// A real key that gives what a key's name promises.
struct RealKey {
  Keycode code;
  /// The group to be in while the key is pressed, where the active one does not give it.
  std::optional<uint8_t> group;
  friend bool operator==(const RealKey&, const RealKey&) = default;
};

/// The key of the live layout: where the active group has it, else where another group has it;
/// absent when a spare key must take its place. Shift, Control and the like act on it as they do.
std::optional<RealKey> realKeyFor(const UsKey& key, const Keymap& map, int activeGroup);

/// A key of the layout that gives the keysym in the active group, with Shift or without.
struct LayoutKey {
  Keycode code;
  bool isShifted;
};
std::optional<LayoutKey> layoutKeyFor(Keysym keysym, const Keymap& map, int activeGroup);

/// What a spare keycode is to mean in place of a key that the layout lacks: as the key on a US
/// keyboard, with all modifiers at work.
KeyMeaning substituteFor(const UsKey& key);
/// Whether that made it, perhaps in a process before this one.
bool isSubstitute(const KeyMeaning& meaning);

/// Keycodes that typing may take: those without meaning, then those of keys that hardly any
/// keyboard has and hardly anyone uses.
struct SpareKeys {
  std::vector<Keycode> unused;
  std::vector<Keycode> rare;
};
SpareKeys spareKeysOf(const Keymap& map);

}  // namespace tapdeck::quartz
