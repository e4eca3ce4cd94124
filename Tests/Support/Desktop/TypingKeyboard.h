#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <string>
#include <vector>

#include "Tests/Support/Desktop/Observer.h"

namespace tapdeck::testing {

/// The X server's keyboard as another program sees and sets it.
class TypingKeyboard {
 public:
  struct State {
    unsigned held, locked, group;
    friend bool operator==(const State&, const State&) = default;
  };

  explicit TypingKeyboard(Observer& observer);
  /// As `setxkbmap -layout` takes it, " -option" and an option after it or none; the first group is
  /// active and nothing is locked.
  void setLayout(const std::string& layout);
  void lockGroup(uint8_t group);
  void lockCaps(bool locked);
  State state();
  /// How many there are, those of borrowed keys included.
  int groups();
  std::string pressedKeys();
  /// Presses and releases the keys themselves, as the user does.
  void tapKeys(const std::vector<uint8_t>& codes);
  static std::string dump();

 private:
  Observer& _observer;
};

void postKey(CGKeyCode code, bool down, CGEventFlags flags = 0);

}  // namespace tapdeck::testing
