#include "Platform/Linux/X11/Keyboard/InputSender.h"

#include <xcb/xtest.h>

#include <algorithm>

namespace tapdeck::quartz {
namespace {

using Clock = std::chrono::steady_clock;

// A button is pressed again after so long at the earliest, as no hand can do it sooner. Chromium
// takes two presses with one time stamp for one press, and gets none of a press that comes while a
// window manager still looks at the last one (openbox does at each click).
constexpr std::chrono::milliseconds kPressGap{20};

}  // namespace

InputSender::InputSender(Connection& connection) : _connection(connection) {
  if (auto left = _journal.takeLeftOver()) {
    _leftOver = std::move(*left);
    _held = _leftOver;
    releaseAll();
  }
}

void InputSender::move(Pixel pixel) {
  fake(XCB_MOTION_NOTIFY, 0, pixel);
}

void InputSender::warp(Pixel pixel) {
  xcb_warp_pointer(_connection.get(), XCB_WINDOW_NONE, _connection.root(), 0, 0, 0, 0, pixel.x,
                   pixel.y);
}

void InputSender::pressKey(Keycode code) {
  if (!_held.keys.test(code)) {
    _held.keys.set(code);
    _journal.write(_held);
  }
  fake(XCB_KEY_PRESS, code);
}

void InputSender::releaseKey(Keycode code) {
  fake(XCB_KEY_RELEASE, code);
  if (!_held.keys.test(code)) return;
  _connection.finish();
  _held.keys.reset(code);
  _journal.write(_held);
}

void InputSender::tapKey(Keycode code) {
  fake(XCB_KEY_PRESS, code);
  fake(XCB_KEY_RELEASE, code);
}

void InputSender::pressButton(uint8_t button) {
  if (!_held.buttons.test(button)) {
    _held.buttons.set(button);
    _journal.write(_held);
  }
  const auto left =
      std::chrono::ceil<std::chrono::milliseconds>(_released[button] + kPressGap - Clock::now());
  fake(XCB_BUTTON_PRESS, button, {0, 0}, static_cast<uint32_t>(std::max<int64_t>(0, left.count())));
}

void InputSender::releaseButton(uint8_t button) {
  fake(XCB_BUTTON_RELEASE, button);
  if (!_held.buttons.test(button)) return;
  _connection.finish();
  _released[button] = Clock::now();
  _held.buttons.reset(button);
  _journal.write(_held);
}

void InputSender::tapButton(uint8_t button) {
  fake(XCB_BUTTON_PRESS, button);
  fake(XCB_BUTTON_RELEASE, button);
}

void InputSender::releaseAll() {
  if (_held.keys.none() && _held.buttons.none()) return;
  for (size_t code = 0; code < _held.keys.size(); ++code) {
    if (_held.keys.test(code)) fake(XCB_KEY_RELEASE, static_cast<uint8_t>(code));
  }
  for (size_t button = 0; button < _held.buttons.size(); ++button) {
    if (_held.buttons.test(button)) fake(XCB_BUTTON_RELEASE, static_cast<uint8_t>(button));
  }
  _connection.finish();
  _held.keys.reset();
  _held.buttons.reset();
  _journal.write(_held);
}

void InputSender::keepMeanings(const KeyMeanings& meanings) {
  _held.meanings = meanings;
  _journal.write(_held);
}

void InputSender::fake(uint8_t type, uint8_t detail, Pixel pixel, uint32_t delay) {
  xcb_test_fake_input(_connection.get(), type, detail, delay, _connection.root(), pixel.x, pixel.y,
                      0);
}

}  // namespace tapdeck::quartz
