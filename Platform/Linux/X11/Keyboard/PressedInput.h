#pragma once

#include <bitset>
#include <cstdint>
#include <map>
#include <vector>

#include "Platform/Linux/X11/Keyboard/KeyPlan.h"

namespace tapdeck::x11 {

/// The platform's one account of what this process holds pressed at the X server.
struct PressedInput {
  struct Key {
    RealKey key;
    /// Modifiers that the event claimed and nobody held: pressed and released with the key.
    std::vector<RealKey> modifiers;
  };
  /// By unshifted keysym.
  std::map<Keysym, Key> keys;
  /// The button as applications see it, and the physical one that was pressed for it.
  std::map<uint8_t, uint8_t> buttons;

  std::bitset<256> keycodes() const;
  std::bitset<256> physicalButtons() const;
};

}  // namespace tapdeck::x11
