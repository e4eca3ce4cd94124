#include "Tests/Desktop/KeysListener.h"

#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace tapdeck::testing {
namespace {

template <typename Object, void (*unreference)(Object*)>
struct Unreference {
  void operator()(Object* object) const { unreference(object); }
};
template <typename Object, void (*unreference)(Object*)>
using Reference = std::unique_ptr<Object, Unreference<Object, unreference>>;

}  // namespace

KeysListener::KeysListener(Observer& observer) : _observer(observer) {
  const xcb_window_t window = _observer.coverScreen();
  const uint32_t events = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE |
                          XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_FOCUS_CHANGE;
  xcb_change_window_attributes(_observer.get(), window, XCB_CW_EVENT_MASK, &events);
  xcb_set_input_focus(_observer.get(), XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
  _observer.sync();
  if (xkb_x11_setup_xkb_extension(
          _observer.get(), XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
          XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr, nullptr) == 0) {
    throw std::runtime_error("no X keyboard extension");
  }
}

std::vector<std::string> KeysListener::heard(size_t count) {
  std::vector<std::string> lines;
  eventually([&] {
    while (lines.size() < count) {
      const auto event = Observer::owned(xcb_poll_for_event(_observer.get()));
      if (event == nullptr) return false;
      if (const std::string line = lineFor(*event); !line.empty()) lines.push_back(line);
    }
    return true;
  });
  return lines;
}

std::string KeysListener::lineFor(const xcb_generic_event_t& event) {
  // the kinds of event are laid out alike
  const auto& input = reinterpret_cast<const xcb_key_press_event_t&>(event);
  const auto kind = event.response_type;
  if (kind == XCB_BUTTON_PRESS) return "button " + std::to_string(input.detail);
  if (kind != XCB_KEY_PRESS && kind != XCB_KEY_RELEASE) return {};
  return (kind == XCB_KEY_PRESS ? "down " : "up ") + keyText(input.detail, input.state);
}

std::string KeysListener::keyText(uint8_t code, uint16_t state) {
  const Reference<xkb_context, xkb_context_unref> context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
  const Reference<xkb_keymap, xkb_keymap_unref> keymap(xkb_x11_keymap_new_from_device(
      context.get(), _observer.get(), xkb_x11_get_core_keyboard_device_id(_observer.get()),
      XKB_KEYMAP_COMPILE_NO_FLAGS));
  const Reference<xkb_state, xkb_state_unref> keyboard(xkb_state_new(keymap.get()));
  xkb_state_update_mask(keyboard.get(), state & 0xff, 0, 0, 0, 0, state >> 13 & 3);
  const xkb_keysym_t keysym = xkb_state_key_get_one_sym(keyboard.get(), code);
  char name[64] = "";
  xkb_keysym_get_name(keysym, name, sizeof name);
  std::string text;
  const auto add = [&](uint16_t mask, const char* modifier) {
    if ((state & mask) != 0) text += std::string(modifier) + "+";
  };
  add(XCB_MOD_MASK_CONTROL, "Control");
  add(XCB_MOD_MASK_1, "Alt");
  add(XCB_MOD_MASK_4, "Super");
  return text + name;
}

}  // namespace tapdeck::testing
