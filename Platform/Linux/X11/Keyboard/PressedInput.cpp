#include "Platform/Linux/X11/Keyboard/PressedInput.h"

namespace tapdeck::x11 {

std::bitset<256> PressedInput::keycodes() const {
  std::bitset<256> codes;
  for (const auto& [keysym, pressed] : keys) {
    codes.set(pressed.key.code);
    for (const RealKey& modifier : pressed.modifiers) codes.set(modifier.code);
  }
  return codes;
}

std::bitset<256> PressedInput::physicalButtons() const {
  std::bitset<256> physical;
  for (const auto& [button, pressed] : buttons) physical.set(pressed);
  return physical;
}

}  // namespace tapdeck::x11
