#include "Platform/Linux/X11/Keyboard/InputSender.h"

#include <xcb/xtest.h>

#include <algorithm>

#include "Platform/Linux/X11/Keyboard/XkbProtocol.h"

namespace tapdeck::x11 {
namespace {

// The shortest time from a button's release to its next press; no hand is faster. Chromium takes
// two presses with one time stamp for one, and gets none that comes while the window manager still
// has the pointer frozen for the press before (openbox has at each click).
constexpr std::chrono::milliseconds kPressGap{20};
// in milliseconds, as the server counts them
constexpr uint32_t kPressDelay = 2;

}  // namespace

InputSender::InputSender(Connection& connection, KeyboardMonitor& monitor)
    : _connection(connection), _monitor(monitor) {
  auto left = _journal.readLeftOver();
  if (!left) return;
  _leftOver = std::move(*left);
  _record = _leftOver;
  _locks = _record.locks;
  _isGroupChanged = _locks.groups != 0;
  _changedModifiers = _locks.modifiers;
  // tapKey records nothing; the server ignores the release of a key that is not pressed
  for (const auto& [code, mapping] : _record.mappings) _record.keys.set(code);
  releaseAll();
}

void InputSender::move(Pixel pixel) {
  fakeInput(XCB_MOTION_NOTIFY, 0, pixel);
}

void InputSender::warp(Pixel pixel) {
  xcb_warp_pointer(_connection.get(), XCB_WINDOW_NONE, _connection.root(), 0, 0, 0, 0, pixel.x,
                   pixel.y);
}

void InputSender::pressKey(Keycode code) {
  _unconfirmedKeys.reset(code);
  updateJournal();
  fakeInput(XCB_KEY_PRESS, code);
}

void InputSender::releaseKey(Keycode code) {
  fakeInput(XCB_KEY_RELEASE, code);
  if (!_record.keys.test(code)) return;
  noteRelease();
  _unconfirmedKeys.set(code);
}

void InputSender::tapKey(Keycode code) {
  fakeInput(XCB_KEY_PRESS, code);
  fakeInput(XCB_KEY_RELEASE, code);
}

void InputSender::pressButton(uint8_t button) {
  // A server that was busy may carry out release and press in the same millisecond; this gives them
  // two time stamps.
  const uint32_t delay = _unconfirmedButtons.test(button) ? kPressDelay : 0;
  _unconfirmedButtons.reset(button);
  updateJournal();
  fakeInput(XCB_BUTTON_PRESS, button, {0, 0}, delay);
}

InputSender::Clock::time_point InputSender::earliestPress(uint8_t button) const {
  const auto released = _released.find(button);
  return released != _released.end() ? released->second + kPressGap : Clock::time_point::min();
}

void InputSender::releaseButton(uint8_t button) {
  fakeInput(XCB_BUTTON_RELEASE, button);
  _released[button] = Clock::now();
  if (!_record.buttons.test(button)) return;
  noteRelease();
  _unconfirmedButtons.set(button);
}

void InputSender::tapButton(uint8_t button) {
  fakeInput(XCB_BUTTON_PRESS, button);
  fakeInput(XCB_BUTTON_RELEASE, button);
}

void InputSender::lockGroup(uint8_t group, uint8_t userGroup) {
  if (group == userGroup) {
    noteGroupRestored();
  } else {
    if (_locks.userGroup != userGroup) _locks.groups = 0;
    _locks.userGroup = userGroup;
    _locks.groups |= static_cast<uint8_t>(1U << group);
    _isGroupChanged = true;
    updateJournal();
  }
  _monitor.invalidateState();
  xcb_xkb_latch_lock_state(_connection.get(), XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, group, 0, 0, 0);
}

void InputSender::restoreGroup() {
  if (!_isGroupChanged) return;
  const uint8_t locked = _monitor.state().lockedGroup;
  const bool isOurs = locked < 8 && (_locks.groups >> locked & 1) != 0;
  if (isOurs) {
    lockGroup(_locks.userGroup, _locks.userGroup);
  } else {
    noteGroupRestored();
  }
}

void InputSender::noteGroupRestored() {
  if (!_isGroupChanged) return;
  noteRelease();
  _isGroupChanged = false;
}

void InputSender::lockModifiers(uint8_t modifiers, uint8_t locked, uint8_t userLocked) {
  if (locked == userLocked) {
    if ((_changedModifiers & modifiers) != 0) noteRelease();
    _changedModifiers &= ~modifiers;
  } else {
    _locks.modifiers |= modifiers;
    _locks.userModifiers = (_locks.userModifiers & ~modifiers) | userLocked;
    _changedModifiers |= modifiers;
    updateJournal();
  }
  _monitor.invalidateState();
  xcb_xkb_latch_lock_state(_connection.get(), XCB_XKB_ID_USE_CORE_KBD, modifiers, locked, 0, 0, 0,
                           0, 0);
}

void InputSender::releaseAll() {
  for (size_t code = 0; code < _record.keys.size(); ++code) {
    const bool isPressed = _record.keys.test(code) && !_unconfirmedKeys.test(code);
    if (isPressed) fakeInput(XCB_KEY_RELEASE, static_cast<uint8_t>(code));
  }
  for (size_t button = 0; button < _record.buttons.size(); ++button) {
    const bool isPressed = _record.buttons.test(button) && !_unconfirmedButtons.test(button);
    if (isPressed) fakeInput(XCB_BUTTON_RELEASE, static_cast<uint8_t>(button));
  }
  _pressed = {};
  restoreGroup();
  const auto userLocked = static_cast<uint8_t>(_locks.userModifiers & _changedModifiers);
  if (_changedModifiers != 0) lockModifiers(_changedModifiers, userLocked, userLocked);
  if (_record.keys.none() && _record.buttons.none() && _record.locks.isNothing()) return;
  _connection.sync();
  confirmReleases(_releaseCount);
}

std::optional<InputSender::Clock::time_point> InputSender::unconfirmedSince() const {
  const bool hasAny = _unconfirmedKeys.any() || _unconfirmedButtons.any() ||
                      (_locks.groups != 0 && !_isGroupChanged) ||
                      (_locks.modifiers & ~_changedModifiers) != 0;
  if (!hasAny) return std::nullopt;
  return _unconfirmedSince;
}

void InputSender::noteRelease() {
  if (!unconfirmedSince()) _unconfirmedSince = Clock::now();
  ++_releaseCount;
}

// A later release waits for the next confirmation, and all others with it.
void InputSender::confirmReleases(uint64_t count) {
  if (count != _releaseCount) {
    _unconfirmedSince = Clock::now();
    return;
  }
  _unconfirmedKeys.reset();
  _unconfirmedButtons.reset();
  if (!_isGroupChanged) _locks.groups = _locks.userGroup = 0;
  _locks.modifiers &= _changedModifiers;
  _locks.userModifiers &= _changedModifiers;
  updateJournal();
}

void InputSender::updateJournal() {
  const auto keys = _pressed.keycodes() | _unconfirmedKeys;
  const auto buttons = _pressed.physicalButtons() | _unconfirmedButtons;
  if (keys == _record.keys && buttons == _record.buttons && _locks == _record.locks) return;
  _record.keys = keys;
  _record.buttons = buttons;
  _record.locks = _locks;
  _journal.write(_record);
}

void InputSender::keepMappings(const KeyMappings& mappings) {
  _record.mappings = mappings;
  _journal.write(_record);
}

void InputSender::fakeInput(uint8_t type, uint8_t detail, Pixel pixel, uint32_t delay) {
  xcb_test_fake_input(_connection.get(), type, detail, delay, _connection.root(), pixel.x, pixel.y,
                      0);
}

}  // namespace tapdeck::x11
