#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Tests/Desktop/Observer.h"

namespace tapdeck::testing {

/// A window with the keyboard focus. Translates the keys that it hears as applications do, by the
/// server's map and each event's state, with a library of its own.
class KeysListener {
 public:
  explicit KeysListener(Observer& observer);
  KeysListener(const KeysListener&) = delete;
  KeysListener& operator=(const KeysListener&) = delete;

  /// Waits for so many presses and releases, of keys and buttons, and gives them as "down Shift_L",
  /// "up Control+c" (with the modifiers that act on it) and "button 1".
  std::vector<std::string> heard(size_t count);

 private:
  std::string lineFor(const xcb_generic_event_t& event);
  std::string keyText(uint8_t code, uint16_t state);

  Observer& _observer;
};

}  // namespace tapdeck::testing
