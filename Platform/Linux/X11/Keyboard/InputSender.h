#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>

#include "Platform/Linux/X11/Connection.h"
#include "Platform/Linux/X11/Keyboard/Journal.h"
#include "Platform/Linux/X11/Keyboard/KeyboardMonitor.h"
#include "Platform/Linux/X11/Keyboard/PressedInput.h"
#include "Platform/Linux/X11/PointSpace.h"

namespace tapdeck::x11 {

/// Sends input by XTEST, and records in the journal what is pressed and locked: the server releases
/// nothing when the client that pressed it is gone. The caller flushes. One thread at a time.
class InputSender {
 public:
  using Clock = std::chrono::steady_clock;

  /// What a process before this one left pressed or locked is given back at once. `monitor` is told
  /// of what changes the keyboard's state.
  InputSender(Connection& connection, KeyboardMonitor& monitor);
  InputSender(const InputSender&) = delete;
  InputSender& operator=(const InputSender&) = delete;

  void move(Pixel pixel);
  /// By the core protocol's WarpPointer.
  void warp(Pixel pixel);

  /// The caller adds a key or button here before it presses it, and removes it before it releases
  /// it.
  PressedInput& pressed() { return _pressed; }
  const PressedInput& pressed() const { return _pressed; }
  void pressKey(Keycode code);
  void releaseKey(Keycode code);
  /// Presses and releases; not recorded.
  void tapKey(Keycode code);
  /// The physical button; not before earliestPress().
  void pressButton(uint8_t button);
  /// When the button may be pressed again. Chromium counts clicks by time stamps.
  Clock::time_point earliestPress(uint8_t button) const;
  void releaseButton(uint8_t button);
  void tapButton(uint8_t button);
  /// Locks a group for a moment in place of `userGroup`, which the user has locked; or that one
  /// again.
  void lockGroup(uint8_t group, uint8_t userGroup);
  /// Locks the user's group again, unless the user has locked another one since.
  void restoreGroup();
  /// Has of these real modifiers those in `locked` locked for a moment, in place of those in
  /// `userLocked`, which the user has locked; or these again.
  void lockModifiers(uint8_t modifiers, uint8_t locked, uint8_t userLocked);
  /// Releases and restores everything but mappings. Returns when the server has done so.
  void releaseAll();

  /// When the first release (of a key, a button or a lock) was sent of those that the journal still
  /// has as pressed, because the server is not known to have carried them out: it drops what it has
  /// not read when the process is killed. Absent when there is none.
  std::optional<std::chrono::steady_clock::time_point> unconfirmedSince() const;
  /// The number of releases so far.
  uint64_t releaseCount() const { return _releaseCount; }
  /// The server has carried out that many releases, and all that was sent before them.
  void confirmReleases(uint64_t count);

  /// What a process before this one left, its keys' mappings included, which are still to be
  /// restored.
  const InputRecord& leftOver() const { return _leftOver; }
  /// Whether mappings can be recorded now: not while the disk is full.
  bool canKeepMappings() { return _journal.reserveSpace(); }
  /// Records the mappings that are to be restored.
  void keepMappings(const KeyMappings& mappings);

 private:
  /// `delay`: milliseconds that the server waits before it, and before all that is sent after it.
  void fakeInput(uint8_t type, uint8_t detail, Pixel pixel = {0, 0}, uint32_t delay = 0);
  void noteGroupRestored();
  void noteRelease();
  void updateJournal();

  Connection& _connection;
  KeyboardMonitor& _monitor;
  Journal _journal;
  PressedInput _pressed;
  std::bitset<256> _unconfirmedKeys;
  std::bitset<256> _unconfirmedButtons;
  /// Those in force, and those that were given back but not confirmed.
  LockChanges _locks;
  /// What of these is in force.
  bool _isGroupChanged = false;
  uint8_t _changedModifiers = 0;
  std::chrono::steady_clock::time_point _unconfirmedSince;
  uint64_t _releaseCount = 0;
  /// When the release of each physical button was last sent.
  std::map<uint8_t, std::chrono::steady_clock::time_point> _released;
  /// As it stands in the journal.
  InputRecord _record;
  InputRecord _leftOver;
};

}  // namespace tapdeck::x11
