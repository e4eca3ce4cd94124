#pragma once

#include <map>
#include <span>
#include <variant>
#include <vector>

#include "Platform/Linux/Quartz/Connection.h"
#include "Platform/Linux/Quartz/Keyboard/BorrowedKeys.h"
#include "Platform/Linux/Quartz/Keyboard/ClientAnswer.h"
#include "Platform/Linux/Quartz/Keyboard/InputSender.h"

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
  /// The group that a pressed key needs is locked until that key is released, or another one is
  /// pressed: some programs (Qt) look for a key's shortcut by the group of a moment later.
  struct KeyGroup {
    Keysym key;
    uint8_t group;
    uint8_t lockedBefore;
  };
  State state();
  void lockCaps(bool locked);
  void lockGroup(uint8_t group);
  void carryOutKey(const KeyStep& step);
  void press(const KeyStep& step);
  void release(const UsKey& key);
  /// In the group of the press, so that applications take both for the same key.
  void sendRelease(const RealKey& key, uint8_t lockedGroup);
  void leaveKeyGroup();
  void type(const TextStep& step);

  Connection& _output;
  InputSender _sender;
  BorrowedKeys _keys;
  Connection _questions;
  ClientAnswer _answer;
  /// By the keysym that the key gives plainly.
  std::map<Keysym, Pressed> _pressed;
  std::optional<KeyGroup> _keyGroup;
};

}  // namespace tapdeck::quartz
