#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <optional>
#include <vector>

#include "Platform/Linux/X11/Keyboard/Keymap.h"

namespace tapdeck::quartz {

/// What a key of the US keyboard gives without and with Shift; `shifted` is 0 for a key that is not
/// for text.
struct UsKey {
  Keysym unshifted = kNoKeysym;
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
  /// Whether Shift is to be on when it is pressed.
  bool isShifted = false;
  friend bool operator==(const RealKey&, const RealKey&) = default;
};

bool isCapsLock(const UsKey& key);

/// The key of the live layout: where the active group has it, else where another group has it;
/// absent when the layout lacks it. Shift, Control and the like act on it as they do.
/// For a modifier any key will do that sets what its own key stands for in the modifier map; for
/// Caps Lock only one that locks.
std::optional<RealKey> realKeyFor(const UsKey& key, const Keymap& map, int activeGroup);

// A key that the layout lacks is given as a further group of the key in the same place: some
// programs go by the keysym, others by the place, and all of them find the same key.

/// The text keys of a US keyboard.
std::vector<UsKey> usTextKeys();
/// Where a US keyboard has the key; absent when that place is a modifier or the like here.
std::optional<Keycode> usKeycodeOf(const UsKey& key, const Keymap& map);
/// The group above all that the map has; the last one where it has four.
uint8_t furtherGroupOf(const Keymap& map);
/// The key with `key` as its group `group`; it goes on giving in the others what it gave.
KeyMapping withUsGroup(const KeyMapping& mapping, const UsKey& key, uint8_t group);
/// Whether that made `mapping`, the keycode's, of `original`, perhaps in a process before this one.
bool hasUsGroup(const KeyMapping& mapping, const KeyMapping& original, Keycode code);

/// Keycodes that typing may take: those without mapping, then those of keys that hardly any
/// keyboard has and hardly anyone uses.
struct SpareKeys {
  std::vector<Keycode> unused;
  std::vector<Keycode> rare;
};
SpareKeys spareKeysOf(const Keymap& map);

}  // namespace tapdeck::quartz
