#pragma once

#include <CoreGraphics/CoreGraphics.h>
#include <xcb/xtest.h>

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "Platform/Linux/X11/Keyboard/XkbProtocol.h"
#include "Runner/Owned.h"
#include "Tests/Support/Desktop/ChildProcess.h"
#include "Tests/Support/Desktop/Observer.h"

namespace tapdeck::testing {

/// The X server's keyboard as another program sees and sets it.
class TypingKeyboard {
 public:
  struct State {
    unsigned held, locked, group;
    friend bool operator==(const State&, const State&) = default;
  };

  explicit TypingKeyboard(Observer& observer) : _observer(observer) {
    _observer.wait(xcb_xkb_use_extension(_observer.get(), 1, 0), xcb_xkb_use_extension_reply);
  }
  /// As `setxkbmap -layout` takes it, " -option" and an option after it or none; the first group is
  /// active and nothing is locked.
  void setLayout(const std::string& layout) {
    if (std::system(("setxkbmap -option '' -layout " + layout).c_str()) != 0)
      throw std::runtime_error(layout);
    lockGroup(0);
    lockCaps(false);
  }
  void lockGroup(uint8_t group) {
    xcb_xkb_latch_lock_state(_observer.get(), XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, group, 0, 0, 0);
    _observer.sync();
  }
  void lockCaps(bool locked) {
    xcb_xkb_latch_lock_state(_observer.get(), XCB_XKB_ID_USE_CORE_KBD, XCB_MOD_MASK_LOCK,
                             locked ? XCB_MOD_MASK_LOCK : 0, 0, 0, 0, 0, 0);
    _observer.sync();
  }
  State state() {
    const auto reply = _observer.wait(xcb_xkb_get_state(_observer.get(), XCB_XKB_ID_USE_CORE_KBD),
                                      xcb_xkb_get_state_reply);
    if (reply == nullptr) throw std::runtime_error("the X server does not answer");
    return {reply->baseMods, reply->lockedMods, reply->group};
  }
  /// How many there are, those of borrowed keys included.
  int groups() {
    const auto reply = _observer.wait(
        xcb_xkb_get_controls(_observer.get(), XCB_XKB_ID_USE_CORE_KBD), xcb_xkb_get_controls_reply);
    if (reply == nullptr) throw std::runtime_error("the X server does not answer");
    return reply->numGroups;
  }
  std::string pressedKeys() {
    const auto reply = _observer.wait(xcb_query_keymap(_observer.get()), xcb_query_keymap_reply);
    std::string pressed;
    for (int code = 0; code < 256; ++code) {
      if ((reply->keys[code / 8] >> (code % 8) & 1) != 0) pressed += std::to_string(code) + " ";
    }
    return pressed;
  }
  /// Presses and releases the keys themselves, as the user does.
  void tapKeys(const std::vector<uint8_t>& codes) {
    for (const uint8_t code : codes) {
      for (const uint8_t type : {XCB_KEY_PRESS, XCB_KEY_RELEASE}) {
        xcb_test_fake_input(_observer.get(), type, code, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0,
                            0);
      }
    }
    _observer.sync();
  }
  static std::string dump() {
    const std::string text = outputOf({"sh", "-c", "xkbcomp -w 0 -xkb $DISPLAY -"});
    if (text.find("xkb_symbols") == std::string::npos) throw std::runtime_error("xkbcomp");
    return text;
  }

 private:
  Observer& _observer;
};

inline void postKey(CGKeyCode code, bool down, CGEventFlags flags = 0) {
  const Owned event(CGEventCreateKeyboardEvent(nullptr, code, down));
  CGEventSetFlags(event.get(), flags);
  CGEventPost(kCGHIDEventTap, event.get());
}

}  // namespace tapdeck::testing
