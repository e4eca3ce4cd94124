#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "Platform/Linux/X11/Connection.h"

namespace tapdeck::x11 {

/// X's numbers: keycodes are 8 to 255, keysyms as in keysymdef.h.
using Keycode = uint8_t;
using Keysym = uint32_t;

inline constexpr Keysym kNoKeysym = 0;

/// An action of the X keyboard extension in its wire format; all zero is NoAction.
using KeyAction = std::array<uint8_t, 8>;

/// What the keymap says of one keycode.
struct KeyMapping {
  /// The key type of each group: how the modifiers choose a level.
  std::array<uint8_t, 4> types{};
  /// The number of groups, and what happens to an effective group above it (XKB's groupInfo).
  uint8_t groupInfo = 0;
  uint8_t width = 0;
  /// `width` for each group.
  std::vector<Keysym> keysyms;
  /// None, or one for each keysym.
  std::vector<KeyAction> actions;

  int groups() const { return groupInfo & 0x0f; }
  /// The key's own group while the keyboard's effective one is `effective`.
  int groupFor(int effective) const;
  /// The first level's; `group` is one of the key's own.
  Keysym unshiftedKeysym(int group) const;
  friend bool operator==(const KeyMapping&, const KeyMapping&) = default;
};

/// The core keyboard's map at one moment.
struct Keymap {
  std::array<KeyMapping, 256> keys;
  /// The real modifiers that a key sets.
  std::array<uint8_t, 256> modifiers{};
  /// Whether a key has an XKB behaviour (lock, radio group, overlay) or virtual modifiers.
  std::array<bool, 256> isSpecial{};
  Keycode first = 8;
  Keycode last = 255;

  /// The highest number of groups of any key; the server brings a locked group into this range.
  int groups() const;
  /// The keycode with this unshifted keysym while the group `effective` is active.
  std::optional<Keycode> keyFor(Keysym keysym, int effective) const;
};

/// The core keyboard's map; absent when the server is gone or answers nonsense. Any thread.
std::optional<Keymap> fetchKeymap(const Connection& connection);

/// The bytes of a map as the server sends it, the reply's header included; absent when they do not
/// hold together.
std::optional<Keymap> readKeymap(const uint8_t* reply, size_t size);

}  // namespace tapdeck::x11
