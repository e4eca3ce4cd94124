#pragma once

#include <chrono>
#include <optional>
#include <span>
#include <variant>
#include <vector>

#include "Platform/Linux/X11/Connection.h"
#include "Platform/Linux/X11/Keyboard/BorrowedKeys.h"
#include "Platform/Linux/X11/Keyboard/ClientSync.h"
#include "Platform/Linux/X11/Keyboard/InputSender.h"
#include "Platform/Linux/X11/Keyboard/KeyboardMonitor.h"

namespace tapdeck::x11 {

// Input to be sent to the server, in order.
struct MotionStep {
  Pixel pixel;
};
/// By the core protocol's WarpPointer: no device has moved.
struct WarpStep {
  Pixel pixel;
};
struct ButtonStep {
  /// As applications see it.
  uint8_t button;
  /// The one to press for it, or to release when this process has not pressed `button`; absent when
  /// no physical button gives it.
  std::optional<uint8_t> physical;
  bool down;
  /// A release of nothing but what this process has pressed.
  bool ownOnly = false;
};
struct WheelStep {
  /// The physical button that stands for the direction.
  uint8_t button;
  int turns;
};
struct KeyStep {
  UsKey key;
  bool down;
  /// Modifiers that the event claims; those that are not held are pressed with this key.
  CGEventFlags flags;
  /// A release of nothing but what this process has pressed.
  bool ownOnly = false;
};
/// Each keysym is pressed and released.
struct TextStep {
  std::vector<Keysym> keysyms;
};
using Step = std::variant<MotionStep, WarpStep, ButtonStep, WheelStep, KeyStep, TextStep>;

/// Carries steps out on the live keyboard, whatever its layout. One thread at a time.
class LiveKeyboard {
 public:
  explicit LiveKeyboard(Connection& output);
  LiveKeyboard(const LiveKeyboard&) = delete;
  LiveKeyboard& operator=(const LiveKeyboard&) = delete;

  /// Whether the step needs no change of the keymap first.
  bool isReady(const Step& step);
  /// When the step may be sent at the earliest, ready or not.
  std::chrono::steady_clock::time_point notBefore(const Step& step) const;
  /// Sends a step that is ready, and whose time has come.
  void carryOut(const Step& step);
  /// Changes the keymap so that the first step is ready, and as many of the others as one change
  /// can serve. May wait some seconds for an application. False when the first cannot be made
  /// ready.
  bool prepare(std::span<const Step> steps);
  /// Restores the user's keymap; may wait like `prepare`.
  void giveBack();
  bool isBorrowing() const { return _keys.isBorrowing(); }
  /// When borrowed keys were last needed; the present time while one is pressed.
  std::chrono::steady_clock::time_point lastNeed() const;
  void releaseAll();

  /// See InputSender.
  std::optional<std::chrono::steady_clock::time_point> unconfirmedSince() const {
    return _sender.unconfirmedSince();
  }
  /// To be called after a reply of the server to a request that was sent after so many releases.
  void confirmReleases(uint64_t count) { _sender.confirmReleases(count); }
  uint64_t releaseCount() const { return _sender.releaseCount(); }
  const Connection& output() const { return _output; }

 private:
  /// The group that a pressed key needs is locked until that key is released, or another one is
  /// pressed, and for some milliseconds at least: some programs (Qt) look for a key's shortcut by
  /// the group of a moment later.
  struct KeyGroup {
    Keysym key;
    uint8_t group;
    uint8_t userGroup;
    std::chrono::steady_clock::time_point since;
  };
  using State = KeyboardState;
  /// The locked group that is not ours but the user's.
  uint8_t userGroup(const State& now) const;
  /// The group to lock so that `wanted` is active, whatever is held or latched besides.
  uint8_t groupToLock(uint8_t wanted, const State& now) const;
  /// A layout switch may have locked a group that only borrowed keys have.
  void putGroupIntoRange();
  void carryOutButton(const ButtonStep& step);
  void carryOutKey(const KeyStep& step);
  void press(const KeyStep& step);
  /// Absent when there is none. Caps Lock, where the layout has no key for it, is locked here and
  /// gives none.
  std::optional<RealKey> keyToPress(const UsKey& key, const State& now);
  /// Press and release are both sent in the key's group, so that applications see one key.
  void sendKey(const RealKey& key, bool down, const State& now);
  /// Updates `now`.
  void enterKeyGroup(const UsKey& key, uint8_t group, State& now);
  void leaveKeyGroup();
  void release(const KeyStep& step);
  /// Whether its XKB actions may change what KeyboardState holds.
  bool changesState(Keycode code, const State& now) const;
  bool isHeld(const UsKey& key) const { return _sender.pressed().keys.contains(key.unshifted); }
  /// Whether a key that is still pressed is this modifier, or was pressed with it.
  bool isNeeded(const RealKey& modifier) const;
  void type(const TextStep& step);
  /// The modifiers that this process holds pressed and that are released while text is typed.
  std::vector<RealKey> modifiersToRelease() const;
  /// Waits for the reply, and notes the window for ClientSync.
  void noteFocus(xcb_get_input_focus_cookie_t question);
  /// With a key of the layout itself; nothing when it has none.
  void typeOnLayout(Keysym keysym, int group);

  Connection& _output;
  KeyboardMonitor _monitor;
  InputSender _sender;
  BorrowedKeys _keys;
  /// ClientSync's: the answers of applications are events.
  Connection _syncConnection;
  ClientSync _clients;
  std::optional<KeyGroup> _keyGroup;
  std::chrono::steady_clock::time_point _lastNeed;
};

}  // namespace tapdeck::x11
