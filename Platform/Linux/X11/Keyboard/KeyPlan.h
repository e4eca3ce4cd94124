#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <optional>
#include <vector>

#include "Platform/Linux/X11/Keyboard/Keymap.h"

namespace tapdeck::x11 {

/// A key of the US keyboard by its keysyms without and with Shift; `shifted` is 0 where the key is
/// none for text.
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

/// The keycode to press for a US key.
struct RealKey {
  Keycode code;
  /// The group to lock while it is pressed; absent where the active one will do.
  std::optional<uint8_t> group;
  /// Whether Shift is to be on when it is pressed.
  bool isShifted = false;
  friend bool operator==(const RealKey&, const RealKey&) = default;
};

bool isCapsLock(const UsKey& key);

/// Where the keymap has the key: in the active group, else in another one; absent when it has it
/// nowhere. For a modifier this may be any key that sets the same real modifier; for Caps Lock only
/// one that locks.
std::optional<RealKey> realKeyFor(const UsKey& key, const Keymap& map, int activeGroup);

/// A key of the layout that gives the keysym in the active group, with Shift or without.
struct LayoutKey {
  Keycode code;
  bool isShifted;
};
std::optional<LayoutKey> layoutKeyFor(Keysym keysym, const Keymap& map, int activeGroup);

// A US key that the layout lacks is added as one more group of the keycode in the same place: some
// programs recognise shortcuts by keysym, others by keycode, and both then see the same key.

/// The text keys of a US keyboard.
std::vector<UsKey> usTextKeys();
/// Where a US keyboard has the key; absent when that place is a modifier or the like here.
std::optional<Keycode> usKeycodeOf(const UsKey& key, const Keymap& map);
/// The first group that the keymap does not have; its last one where it has four.
uint8_t usGroupOf(const Keymap& map);
/// The mapping with `key` added as its group `group`, the other groups unchanged.
KeyMapping withUsGroup(const KeyMapping& mapping, const UsKey& key, uint8_t group);
/// Whether `mapping`, the keycode's, is what withUsGroup makes of `original`: a process before this
/// one may have left it.
bool hasUsGroup(const KeyMapping& mapping, const KeyMapping& original, Keycode code);

/// Keycodes that typing may remap: those without keysyms, then those of keys that hardly any
/// keyboard has.
struct SpareKeys {
  std::vector<Keycode> unused;
  std::vector<Keycode> rare;
};
SpareKeys spareKeysOf(const Keymap& map);

}  // namespace tapdeck::x11
