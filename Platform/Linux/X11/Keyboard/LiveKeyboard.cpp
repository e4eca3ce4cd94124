#include "Platform/Linux/X11/Keyboard/LiveKeyboard.h"

#include <xcb/xtest.h>

#include <algorithm>

#include "Platform/Linux/X11/Keyboard/Keysyms.h"
#include "Platform/Linux/X11/Keyboard/TextKeys.h"
#include "Platform/Linux/X11/Keyboard/XkbProtocol.h"

namespace tapdeck::quartz {
namespace {

template <typename... Functions>
struct Match : Functions... {
  using Functions::operator()...;
};
template <typename... Functions>
Match(Functions...) -> Match<Functions...>;

// so many characters of a text are looked at for one change; more have no places anyway
constexpr size_t kFarthest = 4096;

}  // namespace

LiveKeyboard::LiveKeyboard(Connection& output)
    : _output(output), _sender(output), _keys(output, _sender), _answer(_questions) {
  xcb_test_grab_control(_questions.get(), 1);
  _questions.flush();
}

bool LiveKeyboard::isReady(const Step& step) {
  // what nobody can carry out any more is not worth waiting for
  if (!_keys.followChanges()) return true;
  if (const auto* text = std::get_if<TextStep>(&step)) {
    return !_keys.mayBorrow() ||
           std::all_of(text->keysyms.begin(), text->keysyms.end(),
                       [this](Keysym keysym) { return _keys.textPlace(keysym).has_value(); });
  }
  if (const auto* key = std::get_if<KeyStep>(&step)) {
    return !key->down || realKeyFor(key->key, _keys.layout(), 0) || _keys.substitute(key->key);
  }
  return true;
}

void LiveKeyboard::carryOut(const Step& step) {
  std::visit(Match{[this](const MotionStep& motion) { _sender.move(motion.pixel); },
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
  return {state->group, state->lockedGroup, (state->lockedMods & XCB_MOD_MASK_LOCK) != 0};
}

void LiveKeyboard::lockCaps(bool locked) {
  xcb_xkb_latch_lock_state(_output.get(), XCB_XKB_ID_USE_CORE_KBD, XCB_MOD_MASK_LOCK,
                           locked ? XCB_MOD_MASK_LOCK : 0, 0, 0, 0, 0, 0);
}

void LiveKeyboard::lockGroup(uint8_t group) {
  xcb_xkb_latch_lock_state(_output.get(), XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, group, 0, 0, 0);
}

void LiveKeyboard::type(const TextStep& step) {
  const State before = state();
  // Most programs go by the event, which has no Caps Lock in it; some by the keyboard's state.
  if (before.isCapsLocked) lockCaps(false);
  const int notLocked = before.group - before.lockedGroup;
  uint8_t locked = before.lockedGroup;
  for (const Keysym keysym : step.keysyms) {
    const auto place = _keys.textPlace(keysym);
    if (!place) {
      typeOnLayout(keysym, before.group);
      continue;
    }
    _keys.useText(keysym);
    const auto wanted = static_cast<uint8_t>((place->group - notLocked) & (kTextGroups - 1));
    if (wanted != locked) lockGroup(wanted);
    locked = wanted;
    _sender.tapKey(place->code);
  }
  if (locked != before.lockedGroup) lockGroup(before.lockedGroup);
  if (before.isCapsLocked) lockCaps(true);
}

void LiveKeyboard::typeOnLayout(Keysym keysym, int group) {
  const auto key = layoutKeyFor(keysym, _keys.layout(), group);
  if (!key) return;
  const auto shift = _keys.layout().keyFor(keysyms::Shift_L, group);
  const bool needsShift = key->isShifted && shift && !isHeld({keysyms::Shift_L});
  if (needsShift) _sender.pressKey(*shift);
  _sender.tapKey(key->code);
  if (needsShift) _sender.releaseKey(*shift);
}

void LiveKeyboard::press(const KeyStep& step) {
  const State now = state();
  auto real = realKeyFor(step.key, _keys.layout(), now.group);
  if (!real) {
    const auto code = _keys.substitute(step.key);
    if (!code) return;
    _keys.useSubstitute(step.key);
    real = RealKey{*code, std::nullopt};
  }
  Pressed pressed{*real, {}};
  for (const CGKeyCode modifier : modifierKeysIn(step.flags)) {
    const UsKey key = *usKeyFor(modifier);
    const auto place = realKeyFor(key, _keys.layout(), now.group);
    if (place && key.plain != step.key.plain && !isHeld(key)) pressed.around.push_back(place->code);
  }
  for (const Keycode code : pressed.around) _sender.pressKey(code);
  sendKey(*real, true, now.lockedGroup);
  // a repeated press keeps what the first one holds
  _pressed.emplace(step.key.plain, std::move(pressed));
}

void LiveKeyboard::sendKey(const RealKey& key, bool down, uint8_t lockedGroup) {
  if (key.group) lockGroup(*key.group);
  if (down) {
    _sender.pressKey(key.code);
  } else {
    _sender.releaseKey(key.code);
  }
  if (key.group) lockGroup(lockedGroup);
}

void LiveKeyboard::release(const UsKey& key) {
  const State now = state();
  const auto found = _pressed.find(key.plain);
  if (found == _pressed.end()) {
    // nothing of ours: another program's, or one from before
    const auto real = realKeyFor(key, _keys.layout(), now.group);
    if (real) sendKey(*real, false, now.lockedGroup);
    return;
  }
  sendKey(found->second.key, false, now.lockedGroup);
  const auto& around = found->second.around;
  for (auto code = around.rbegin(); code != around.rend(); ++code) _sender.releaseKey(*code);
  _pressed.erase(found);
}

bool LiveKeyboard::prepare(std::span<const Step> steps) {
  BorrowedKeys::Wanted wanted;
  wanted.held = heldCodes();
  for (const Step& step : steps) {
    if (const auto* text = std::get_if<TextStep>(&step)) {
      wanted.text.insert(wanted.text.end(), text->keysyms.begin(), text->keysyms.end());
    } else if (const auto* key = std::get_if<KeyStep>(&step); key != nullptr && key->down) {
      if (!realKeyFor(key->key, _keys.layout(), 0)) wanted.keys.push_back(key->key);
    }
    if (wanted.text.size() > kFarthest) break;
  }
  if (_keys.takesPlacesAway(wanted)) _answer.await();
  const bool placed = _keys.place(wanted);
  if (placed) _answer.settle();
  return placed;
}

void LiveKeyboard::giveBack() {
  if (!isBorrowing()) return;
  _answer.await();
  _keys.giveBack();
}

void LiveKeyboard::releaseAll() {
  _pressed.clear();
  _sender.releaseAll();
}

std::bitset<256> LiveKeyboard::heldCodes() const {
  std::bitset<256> codes;
  for (const auto& [keysym, pressed] : _pressed) codes.set(pressed.key.code);
  return codes;
}

}  // namespace tapdeck::quartz
