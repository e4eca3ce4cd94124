#include "Platform/Linux/X11/Keyboard/LiveKeyboard.h"

#include <xcb/xtest.h>

#include <algorithm>
#include <thread>

#include "Platform/Linux/X11/Keyboard/TextKeys.h"
#include "Platform/Linux/X11/Keyboard/XkbProtocol.h"

namespace tapdeck::quartz {
namespace {

using Clock = std::chrono::steady_clock;

template <typename... Functions>
struct Match : Functions... {
  using Functions::operator()...;
};
template <typename... Functions>
Match(Functions...) -> Match<Functions...>;

// so many characters of a text are looked at for one change; more have no places anyway
constexpr size_t kFarthest = 4096;

constexpr std::chrono::milliseconds kMinGroupTime{20};

}  // namespace

LiveKeyboard::LiveKeyboard(Connection& output)
    : _output(output), _sender(output), _keys(output, _sender), _answer(_questions) {
  xcb_test_grab_control(_questions.get(), 1);
  _questions.flush();
  // a process before this one may have been killed while it borrowed
  putGroupIntoRange();
}

bool LiveKeyboard::isReady(const Step& step) {
  // what nobody can carry out any more is not worth waiting for
  if (!_keys.followChanges()) return true;
  if (const auto* text = std::get_if<TextStep>(&step)) {
    return std::all_of(text->keysyms.begin(), text->keysyms.end(),
                       [this](Keysym keysym) { return _keys.textPlace(keysym).has_value(); });
  }
  if (const auto* key = std::get_if<KeyStep>(&step)) {
    return !key->down || isCapsLock(key->key) || realKeyFor(key->key, _keys.layout(), 0) ||
           _keys.usKey(key->key);
  }
  return true;
}

void LiveKeyboard::carryOut(const Step& step) {
  std::visit(Match{[this](const MotionStep& motion) { _sender.move(motion.pixel); },
                   [this](const WarpStep& warp) { _sender.warp(warp.pixel); },
                   [this](const ButtonStep& button) {
                     if (button.down) {
                       _sender.pressButton(button.button);
                     } else {
                       _sender.releaseButton(button.button);
                     }
                   },
                   [this](const WheelStep& wheel) {
                     for (int left = wheel.turns; left > 0; --left) _sender.tapButton(wheel.button);
                   },
                   [this](const KeyStep& key) { carryOutKey(key); },
                   [this](const TextStep& text) { type(text); }},
             step);
  xcb_flush(_output.get());
}

void LiveKeyboard::carryOutKey(const KeyStep& step) {
  if (step.down) {
    press(step);
  } else {
    release(step.key);
  }
}

// Where the keys go is asked together with the state: that is one way to the server and back.
LiveKeyboard::State LiveKeyboard::state() {
  const auto focusCookie = xcb_get_input_focus(_output.get());
  const auto stateCookie = xcb_xkb_get_state(_output.get(), XCB_XKB_ID_USE_CORE_KBD);
  const auto focus = _output.wait(focusCookie, xcb_get_input_focus_reply);
  const auto state = _output.wait(stateCookie, xcb_xkb_get_state_reply);
  if (focus != nullptr) _answer.note(focus->focus);
  if (state == nullptr) return {};
  return {state->group, state->lockedGroup, state->lockedMods};
}

void LiveKeyboard::lockModifier(uint8_t modifier, bool locked) {
  xcb_xkb_latch_lock_state(_output.get(), XCB_XKB_ID_USE_CORE_KBD, modifier, locked ? modifier : 0,
                           0, 0, 0, 0, 0);
}

void LiveKeyboard::lockGroup(uint8_t group) {
  xcb_xkb_latch_lock_state(_output.get(), XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, group, 0, 0, 0);
}

uint8_t LiveKeyboard::groupToLock(uint8_t wanted, const State& now) const {
  const int groups = std::max(1, _keys.groups());
  const int notLocked = now.group - now.lockedGroup;
  return static_cast<uint8_t>(((wanted - notLocked) % groups + groups) % groups);
}

void LiveKeyboard::putGroupIntoRange() {
  const int groups = std::max(1, _keys.layout().groups());
  const uint8_t locked = state().lockedGroup;
  if (locked >= groups) lockGroup(static_cast<uint8_t>(locked % groups));
}

void LiveKeyboard::type(const TextStep& step) {
  leaveKeyGroup();
  _lastNeed = Clock::now();
  const State before = state();
  const bool isCapsLocked = (before.lockedModifiers & XCB_MOD_MASK_LOCK) != 0;
  // Most programs go by the event, which has no Caps Lock in it; some by the keyboard's state.
  if (isCapsLocked) lockModifier(XCB_MOD_MASK_LOCK, false);
  uint8_t locked = before.lockedGroup;
  for (const Keysym keysym : step.keysyms) {
    const auto place = _keys.textPlace(keysym);
    if (!place) continue;
    _keys.useText(keysym);
    const uint8_t wanted = groupToLock(place->group, before);
    if (wanted != locked) lockGroup(wanted);
    locked = wanted;
    _sender.tapKey(place->code);
  }
  if (locked != before.lockedGroup) lockGroup(before.lockedGroup);
  if (isCapsLocked) lockModifier(XCB_MOD_MASK_LOCK, true);
}

void LiveKeyboard::press(const KeyStep& step) {
  leaveKeyGroup();
  State now = state();
  auto held = _pressed.find(step.key.plain);
  if (held == _pressed.end()) {
    const auto key = keyToPress(step.key, now);
    if (!key) return;
    held = _pressed.emplace(step.key.plain, Pressed{*key, {}}).first;
  }
  // a repeated press is of the same key, whatever the layout has become
  auto& [key, around] = held->second;
  for (const CGKeyCode modifier : modifierKeysIn(step.flags)) {
    const UsKey usKey = *usKeyFor(modifier);
    if (usKey.plain == step.key.plain || isHeld(usKey)) continue;
    const auto place = realKeyFor(usKey, _keys.layout(), now.group);
    if (!place || std::find(around.begin(), around.end(), *place) != around.end()) continue;
    around.push_back(*place);
    sendKey(*place, true, now);
  }
  if (key.group) enterKeyGroup(step.key, *key.group, now);
  sendKey(key, true, now);
}

std::optional<RealKey> LiveKeyboard::keyToPress(const UsKey& key, const State& now) {
  if (const auto real = realKeyFor(key, _keys.layout(), now.group)) return real;
  if (isCapsLock(key)) {
    lockModifier(XCB_MOD_MASK_LOCK, (now.lockedModifiers & XCB_MOD_MASK_LOCK) == 0);
    return std::nullopt;
  }
  return _keys.usKey(key);
}

void LiveKeyboard::sendKey(const RealKey& key, bool down, const State& now) {
  if (key.group) lockGroup(groupToLock(*key.group, now));
  // what a key does is decided when it is pressed
  const bool locksShift = down && key.isShifted && (now.lockedModifiers & XCB_MOD_MASK_SHIFT) == 0;
  if (locksShift) lockModifier(XCB_MOD_MASK_SHIFT, true);
  if (down) {
    _sender.pressKey(key.code);
  } else {
    _sender.releaseKey(key.code);
  }
  if (locksShift) lockModifier(XCB_MOD_MASK_SHIFT, false);
  if (key.group) lockGroup(now.lockedGroup);
}

void LiveKeyboard::enterKeyGroup(const UsKey& key, uint8_t group, State& now) {
  const uint8_t locked = groupToLock(group, now);
  lockGroup(locked);
  _keyGroup = {key.plain, locked, now.lockedGroup, Clock::now()};
  now.group = group;
  now.lockedGroup = locked;
}

void LiveKeyboard::leaveKeyGroup() {
  if (!_keyGroup) return;
  const State now = state();
  // a press that had to wait has its release right behind it
  std::this_thread::sleep_until(_keyGroup->since + kMinGroupTime);
  // the user may have chosen another one meanwhile
  if (now.lockedGroup == _keyGroup->group) lockGroup(_keyGroup->lockedBefore);
  _keyGroup.reset();
}

void LiveKeyboard::release(const UsKey& key) {
  const State now = state();
  const auto found = _pressed.find(key.plain);
  if (found == _pressed.end()) {
    // nothing of ours: another program's, or one from before
    const auto real = realKeyFor(key, _keys.layout(), now.group);
    if (real) sendKey(*real, false, now);
    return;
  }
  const Pressed released = std::move(found->second);
  if (_keys.isBorrowed(released.key.code)) _lastNeed = Clock::now();
  _pressed.erase(found);
  sendKey(released.key, false, now);
  for (auto modifier = released.around.rbegin(); modifier != released.around.rend(); ++modifier) {
    if (!isNeeded(*modifier)) sendKey(*modifier, false, now);
  }
  if (_keyGroup && _keyGroup->key == key.plain) leaveKeyGroup();
}

bool LiveKeyboard::isNeeded(const RealKey& modifier) const {
  return std::any_of(_pressed.begin(), _pressed.end(), [&](const auto& pressed) {
    const auto& [key, around] = pressed.second;
    return key == modifier || std::find(around.begin(), around.end(), modifier) != around.end();
  });
}

bool LiveKeyboard::prepare(std::span<const Step> steps) {
  BorrowedKeys::Wanted wanted;
  for (const Step& step : steps) {
    if (const auto* text = std::get_if<TextStep>(&step)) {
      wanted.text.insert(wanted.text.end(), text->keysyms.begin(), text->keysyms.end());
    } else if (const auto* key = std::get_if<KeyStep>(&step); key != nullptr && key->down) {
      const bool needsNone = isCapsLock(key->key) || realKeyFor(key->key, _keys.layout(), 0);
      if (!needsNone) wanted.keys.push_back(key->key);
    }
    if (wanted.text.size() > kFarthest) break;
  }
  _lastNeed = Clock::now();
  if (_keys.takesPlacesAway(wanted)) _answer.await();
  const bool placed = _keys.place(wanted);
  if (placed) _answer.settle();
  return placed;
}

void LiveKeyboard::giveBack() {
  if (!isBorrowing()) return;
  _answer.await();
  putGroupIntoRange();
  _keys.giveBack();
}

std::chrono::steady_clock::time_point LiveKeyboard::lastNeed() const {
  const bool isHeld = std::any_of(_pressed.begin(), _pressed.end(), [this](const auto& pressed) {
    return _keys.isBorrowed(pressed.second.key.code);
  });
  return isHeld ? Clock::now() : _lastNeed;
}

void LiveKeyboard::releaseAll() {
  _pressed.clear();
  leaveKeyGroup();
  _sender.releaseAll();
}

}  // namespace tapdeck::quartz
