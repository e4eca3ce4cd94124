#include "Platform/Linux/X11/Keyboard/LiveKeyboard.h"

#include <xcb/xtest.h>

#include <algorithm>
#include <thread>

#include "Platform/Linux/X11/Keyboard/Keysyms.h"
#include "Platform/Linux/X11/Keyboard/TextKeys.h"
#include "Platform/Linux/X11/Keyboard/XkbProtocol.h"

namespace tapdeck::x11 {
namespace {

using Clock = std::chrono::steady_clock;

template <typename... Functions>
struct Overloaded : Functions... {
  using Functions::operator()...;
};
template <typename... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

// the characters of a text that one change of the keymap is planned for; there are fewer spare keys
constexpr size_t kMaxTextAhead = 4096;

constexpr std::chrono::milliseconds kMinGroupTime{20};

// Not Alt and Super: where nothing was pressed with them, their release opens a menu in some
// programs.
constexpr uint8_t kReleasedForText = XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL;

}  // namespace

LiveKeyboard::LiveKeyboard(Connection& output)
    : _output(output),
      _monitor(output),
      _sender(output, _monitor),
      _keys(output, _sender, _monitor),
      _clients(_syncConnection) {
  xcb_test_grab_control(_syncConnection.get(), 1);
  _syncConnection.flush();
  // a process before this one may have been killed while the keymap was changed
  putGroupIntoRange();
}

bool LiveKeyboard::isReady(const Step& step) {
  // without a server there is nothing to wait for
  if (!_keys.followChanges()) return true;
  if (const auto* text = std::get_if<TextStep>(&step)) {
    return !_keys.mayBorrow() ||
           std::all_of(text->keysyms.begin(), text->keysyms.end(),
                       [this](Keysym keysym) { return _keys.assignedKey(keysym).has_value(); });
  }
  if (const auto* key = std::get_if<KeyStep>(&step)) {
    return !key->down || isCapsLock(key->key) || realKeyFor(key->key, _keys.layout(), 0) ||
           _keys.usKey(key->key);
  }
  return true;
}

std::chrono::steady_clock::time_point LiveKeyboard::notBefore(const Step& step) const {
  const auto* button = std::get_if<ButtonStep>(&step);
  const bool isPress = button != nullptr && button->down && button->physical;
  return isPress ? _sender.earliestPress(*button->physical)
                 : std::chrono::steady_clock::time_point::min();
}

void LiveKeyboard::carryOut(const Step& step) {
  std::visit(Overloaded{[this](const MotionStep& motion) { _sender.move(motion.pixel); },
                        [this](const WarpStep& warp) { _sender.warp(warp.pixel); },
                        [this](const ButtonStep& button) { carryOutButton(button); },
                        [this](const WheelStep& wheel) {
                          for (int left = wheel.turns; left > 0; --left)
                            _sender.tapButton(wheel.button);
                        },
                        [this](const KeyStep& key) { carryOutKey(key); },
                        [this](const TextStep& text) { type(text); }},
             step);
  xcb_flush(_output.get());
}

// The buttons' mapping may change while one is pressed: what was pressed is what gets released.
void LiveKeyboard::carryOutButton(const ButtonStep& step) {
  auto& pressed = _sender.pressed().buttons;
  const auto found = pressed.find(step.button);
  if (found == pressed.end() && step.ownOnly) return;
  const auto physical = found != pressed.end() ? found->second : step.physical;
  if (!physical) return;
  if (step.down) {
    pressed.emplace(step.button, *physical);
    _sender.pressButton(*physical);
  } else {
    if (found != pressed.end()) pressed.erase(found);
    _sender.releaseButton(*physical);
  }
}

void LiveKeyboard::carryOutKey(const KeyStep& step) {
  if (step.down) {
    press(step);
  } else {
    release(step);
  }
}

uint8_t LiveKeyboard::userGroup(const State& now) const {
  const bool isOurs = _keyGroup && _keyGroup->group == now.lockedGroup;
  return isOurs ? _keyGroup->userGroup : now.lockedGroup;
}

uint8_t LiveKeyboard::groupToLock(uint8_t wanted, const State& now) const {
  const int groups = std::max(1, _keys.groups());
  const int notLocked = now.group - now.lockedGroup;
  return static_cast<uint8_t>(((wanted - notLocked) % groups + groups) % groups);
}

void LiveKeyboard::putGroupIntoRange() {
  const int groups = std::max(1, _keys.layout().groups());
  const uint8_t locked = _monitor.state().lockedGroup;
  const auto inRange = static_cast<uint8_t>(locked % groups);
  if (locked != inRange) _sender.lockGroup(inRange, inRange);
}

// An application has to have read the events of borrowed keys before these are assigned to other
// keysyms or given back.
void LiveKeyboard::noteFocus(xcb_get_input_focus_cookie_t question) {
  const auto focus = _output.wait(question, xcb_get_input_focus_reply);
  if (focus != nullptr) _clients.noteTypedInto(focus->focus);
}

void LiveKeyboard::type(const TextStep& step) {
  leaveKeyGroup();
  _lastNeed = Clock::now();
  const auto focus = xcb_get_input_focus(_output.get());
  const State before = _monitor.state();
  noteFocus(focus);
  const uint8_t capsLock = before.lockedModifiers & XCB_MOD_MASK_LOCK;
  // The key events bear no modifiers, but some programs (Qt) go by the keyboard's state instead.
  const std::vector<RealKey> released = modifiersToRelease();
  for (const RealKey& modifier : released) sendKey(modifier, false, before);
  if (capsLock != 0) _sender.lockModifiers(capsLock, 0, capsLock);
  uint8_t locked = before.lockedGroup;
  for (const Keysym keysym : step.keysyms) {
    const auto key = _keys.assignedKey(keysym);
    if (!key) {
      typeOnLayout(keysym, before.group);
      continue;
    }
    _keys.markUsed(keysym);
    const uint8_t wanted = groupToLock(key->group, before);
    if (wanted != locked) _sender.lockGroup(wanted, before.lockedGroup);
    locked = wanted;
    _sender.tapKey(key->code);
  }
  if (locked != before.lockedGroup) _sender.lockGroup(before.lockedGroup, before.lockedGroup);
  if (capsLock != 0) _sender.lockModifiers(capsLock, capsLock, capsLock);
  for (const RealKey& modifier : released) sendKey(modifier, true, before);
}

std::vector<RealKey> LiveKeyboard::modifiersToRelease() const {
  std::vector<RealKey> modifiers;
  const auto add = [&](const RealKey& key) {
    const bool isReleased = (_keys.layout().modifiers[key.code] & kReleasedForText) != 0;
    if (isReleased && std::find(modifiers.begin(), modifiers.end(), key) == modifiers.end()) {
      modifiers.push_back(key);
    }
  };
  for (const auto& [keysym, pressed] : _sender.pressed().keys) {
    add(pressed.key);
    for (const RealKey& modifier : pressed.modifiers) add(modifier);
  }
  return modifiers;
}

void LiveKeyboard::typeOnLayout(Keysym keysym, int group) {
  const auto key = layoutKeyFor(keysym, _keys.layout(), group);
  if (!key) return;
  const auto shift = _keys.layout().keyFor(keysyms::Shift_L, group);
  const bool needsShift = key->isShifted && shift;
  if (needsShift) _sender.pressKey(*shift);
  _sender.tapKey(key->code);
  if (needsShift) _sender.releaseKey(*shift);
}

void LiveKeyboard::press(const KeyStep& step) {
  leaveKeyGroup();
  State now = _monitor.state();
  auto& pressed = _sender.pressed().keys;
  auto held = pressed.find(step.key.unshifted);
  if (held == pressed.end()) {
    const auto key = keyToPress(step.key, now);
    if (!key) return;
    held = pressed.emplace(step.key.unshifted, PressedInput::Key{*key, {}}).first;
  }
  // a repeated press uses the same keycode, even if the layout has changed
  auto& [key, modifiers] = held->second;
  if (_keys.isBorrowed(key.code)) noteFocus(xcb_get_input_focus(_output.get()));
  for (const CGKeyCode modifier : modifierKeysIn(step.flags)) {
    const UsKey usKey = *usKeyFor(modifier);
    if (usKey.unshifted == step.key.unshifted || isHeld(usKey)) continue;
    const auto place = realKeyFor(usKey, _keys.layout(), now.group);
    if (!place || std::find(modifiers.begin(), modifiers.end(), *place) != modifiers.end())
      continue;
    modifiers.push_back(*place);
    sendKey(*place, true, now);
  }
  if (key.group) enterKeyGroup(step.key, *key.group, now);
  sendKey(key, true, now);
}

std::optional<RealKey> LiveKeyboard::keyToPress(const UsKey& key, const State& now) {
  if (const auto real = realKeyFor(key, _keys.layout(), now.group)) return real;
  if (isCapsLock(key)) {
    const uint8_t locked = ~now.lockedModifiers & XCB_MOD_MASK_LOCK;
    _sender.lockModifiers(XCB_MOD_MASK_LOCK, locked, locked);
    return std::nullopt;
  }
  return _keys.usKey(key);
}

void LiveKeyboard::sendKey(const RealKey& key, bool down, const State& now) {
  if (changesState(key.code, now)) _monitor.invalidateState();
  if (key.group) _sender.lockGroup(groupToLock(*key.group, now), userGroup(now));
  // the level is chosen at the press
  const bool locksShift = down && key.isShifted && (now.lockedModifiers & XCB_MOD_MASK_SHIFT) == 0;
  if (locksShift) _sender.lockModifiers(XCB_MOD_MASK_SHIFT, XCB_MOD_MASK_SHIFT, 0);
  if (down) {
    _sender.pressKey(key.code);
  } else {
    _sender.releaseKey(key.code);
  }
  if (locksShift) _sender.lockModifiers(XCB_MOD_MASK_SHIFT, 0, 0);
  if (key.group) _sender.lockGroup(now.lockedGroup, userGroup(now));
}

void LiveKeyboard::enterKeyGroup(const UsKey& key, uint8_t group, State& now) {
  const uint8_t locked = groupToLock(group, now);
  _sender.lockGroup(locked, now.lockedGroup);
  _keyGroup = {key.unshifted, locked, now.lockedGroup, Clock::now()};
  now.group = group;
  now.lockedGroup = locked;
}

void LiveKeyboard::leaveKeyGroup() {
  if (!_keyGroup) return;
  // the release of a press that was queued follows it at once
  xcb_flush(_output.get());
  std::this_thread::sleep_until(_keyGroup->since + kMinGroupTime);
  _sender.restoreGroup();
  _keyGroup.reset();
}

bool LiveKeyboard::changesState(Keycode code, const State& now) const {
  // bytes of an XKB action
  constexpr size_t kind = 0;
  constexpr size_t modifierMask = 2;
  const auto& actions = _keys.layout().keys[code].actions;
  return std::any_of(actions.begin(), actions.end(), [&](const KeyAction& action) {
    if (action[kind] == XCB_XKB_SA_TYPE_NO_ACTION) return false;
    // only holds its modifiers, but may clear them where they are locked
    return action[kind] != XCB_XKB_SA_TYPE_SET_MODS ||
           (action[modifierMask] & now.lockedModifiers) != 0;
  });
}

void LiveKeyboard::release(const KeyStep& step) {
  const UsKey& key = step.key;
  auto& pressed = _sender.pressed().keys;
  const auto found = pressed.find(key.unshifted);
  if (found == pressed.end() && step.ownOnly) return;
  const State now = _monitor.state();
  if (found == pressed.end()) {
    // not pressed by us, but by another program or an earlier process
    const auto real = realKeyFor(key, _keys.layout(), now.group);
    if (real) sendKey(*real, false, now);
    return;
  }
  const PressedInput::Key released = std::move(found->second);
  if (_keys.isBorrowed(released.key.code)) _lastNeed = Clock::now();
  pressed.erase(found);
  sendKey(released.key, false, now);
  for (auto modifier = released.modifiers.rbegin(); modifier != released.modifiers.rend();
       ++modifier) {
    if (!isNeeded(*modifier)) sendKey(*modifier, false, now);
  }
  if (_keyGroup && _keyGroup->key == key.unshifted) leaveKeyGroup();
}

bool LiveKeyboard::isNeeded(const RealKey& modifier) const {
  const auto& keys = _sender.pressed().keys;
  return std::any_of(keys.begin(), keys.end(), [&](const auto& pressed) {
    const auto& [key, modifiers] = pressed.second;
    return key == modifier ||
           std::find(modifiers.begin(), modifiers.end(), modifier) != modifiers.end();
  });
}

bool LiveKeyboard::prepare(std::span<const Step> steps) {
  BorrowedKeys::Request request;
  for (const Step& step : steps) {
    if (const auto* text = std::get_if<TextStep>(&step)) {
      request.text.insert(request.text.end(), text->keysyms.begin(), text->keysyms.end());
    } else if (const auto* key = std::get_if<KeyStep>(&step); key != nullptr && key->down) {
      const bool needsNone = isCapsLock(key->key) || realKeyFor(key->key, _keys.layout(), 0);
      if (!needsNone) request.keys.push_back(key->key);
    }
    if (request.text.size() > kMaxTextAhead) break;
  }
  _lastNeed = Clock::now();
  if (_keys.wouldEvict(request)) _clients.waitUntilRead();
  const bool assigned = _keys.assign(request);
  if (assigned) _clients.waitForKeymapRefresh();
  return assigned;
}

void LiveKeyboard::giveBack() {
  if (!isBorrowing()) return;
  _clients.waitUntilRead();
  putGroupIntoRange();
  _keys.giveBack();
}

std::chrono::steady_clock::time_point LiveKeyboard::lastNeed() const {
  const auto& keys = _sender.pressed().keys;
  const bool isPressed = std::any_of(keys.begin(), keys.end(), [this](const auto& pressed) {
    return _keys.isBorrowed(pressed.second.key.code);
  });
  return isPressed ? Clock::now() : _lastNeed;
}

void LiveKeyboard::releaseAll() {
  leaveKeyGroup();
  _sender.releaseAll();
}

}  // namespace tapdeck::x11
