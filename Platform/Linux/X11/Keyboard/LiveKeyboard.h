#pragma once

#include <map>
#include <span>
#include <variant>
#include <vector>

#include "Platform/Linux/X11/Connection.h"
#include "Platform/Linux/X11/Keyboard/BorrowedKeys.h"
#include "Platform/Linux/X11/Keyboard/ClientAnswer.h"
#include "Platform/Linux/X11/Keyboard/InputSender.h"

namespace tapdeck::quartz {

// What is to be done at the server, one after the other.
struct MotionStep {
  Pixel pixel;
};
struct ButtonStep {
  /// The physical button.
  uint8_t button;
  bool down;
};
struct WheelStep {
  /// The physical button that stands for the direction.
  uint8_t button;
  int turns;
};
struct KeyStep {
  UsKey key;
  bool down;
  /// Modifiers that the event claims; those that nobody holds are held for this key.
  CGEventFlags flags;
};
/// Each keysym is pressed and released.
struct TextStep {
  std::vector<Keysym> keysyms;
};
using Step = std::variant<MotionStep, ButtonStep, WheelStep, KeyStep, TextStep>;

/// Carries steps out on the live keyboard, whatever its layout. One thread at a time.
class LiveKeyboard {
 public:
  explicit LiveKeyboard(Connection& output);
  LiveKeyboard(const LiveKeyboard&) = delete;
  LiveKeyboard& operator=(const LiveKeyboard&) = delete;

  /// Whether the step needs no change of the keymap first.
  bool isReady(const Step& step);
  /// Of a step that is ready; sends it.
  void carryOut(const Step& step);
  /// Makes the first of the steps ready, and of the others as many as one change can. May wait, not
  /// for ever, for an application. False when it cannot be made ready.
  bool prepare(std::span<const Step> steps);
  /// Keys that typing borrowed are the user's again; waits like `prepare`.
  void giveBack();
  bool isBorrowing() const { return _keys.isBorrowing(); }
  void releaseAll();
  bool isHeld(const UsKey& key) const { return _pressed.contains(key.plain); }

 private:
  struct State {
    /// The active group, of which this much is locked: the rest is held or latched.
    uint8_t group = 0;
    uint8_t lockedGroup = 0;
    bool isCapsLocked = false;
  };
  struct Pressed {
    RealKey key;
    std::vector<Keycode> around;
  };
  State state();
  void lockCaps(bool locked);
  void lockGroup(uint8_t group);
  void carryOutKey(const KeyStep& step);
  void press(const KeyStep& step);
  /// Both in the key's group, so that applications take them for the same key.
  void sendKey(const RealKey& key, bool down, uint8_t lockedGroup);
  void release(const UsKey& key);
  void type(const TextStep& step);
  /// With a key of the layout itself; nothing when it has none.
  void typeOnLayout(Keysym keysym, int group);
  std::bitset<256> heldCodes() const;

  Connection& _output;
  InputSender _sender;
  BorrowedKeys _keys;
  Connection _questions;
  ClientAnswer _answer;
  /// By the keysym that the key gives plainly.
  std::map<Keysym, Pressed> _pressed;
};

}  // namespace tapdeck::quartz
