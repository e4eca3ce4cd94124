#pragma once

#include <xcb/randr.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "Platform/Linux/X11/Connection.h"
#include "Tests/Support/MainLoop.h"

namespace tapdeck::testing {

inline std::string lineFor(const xcb_generic_event_t& event) {
  // the three kinds of event are laid out alike
  const auto& input = reinterpret_cast<const xcb_button_press_event_t&>(event);
  const std::string place = std::to_string(input.root_x) + "," + std::to_string(input.root_y);
  const std::string button = std::to_string(input.detail);
  if (event.response_type == XCB_BUTTON_PRESS) return "down " + button + " at " + place;
  if (event.response_type == XCB_BUTTON_RELEASE) return "up " + button + " at " + place;
  if (event.response_type != XCB_MOTION_NOTIFY) return {};
  std::string held;
  for (int n = 1; n <= 5; ++n) {
    if ((input.state & (XCB_BUTTON_MASK_1 << (n - 1))) != 0) held += std::to_string(n);
  }
  return "move to " + place + " holding " + held;
}

/// A client of the X server of its own, which sees what really arrived there.
class Observer : public x11::Connection {
 public:
  struct Pointer {
    int x, y;
    /// Which buttons are pressed: bit 0 is button 1.
    unsigned buttons;
    friend bool operator==(const Pointer&, const Pointer&) = default;
  };

  /// The owner of a reply or an event.
  template <typename Packet>
  static x11::Received<Packet> owned(Packet* packet) {
    return x11::Received<Packet>(packet);
  }

  /// Waits until the server has carried out all that came before and has sent its other clients the
  /// events: the first answer may overtake those, the second one comes after them.
  void sync() const {
    Connection::sync();
    Connection::sync();
  }
  Pointer pointer() const {
    const auto reply = wait(xcb_query_pointer(get(), root()), xcb_query_pointer_reply);
    if (reply == nullptr) throw std::runtime_error("the X server does not answer");
    return {reply->root_x, reply->root_y, static_cast<unsigned>(reply->mask >> 8 & 0x1f)};
  }

  /// Opens a white window that covers the whole screen and hears every button and motion.
  xcb_window_t coverScreen() {
    const xcb_window_t window = xcb_generate_id(get());
    const uint32_t values[] = {screen().white_pixel, 1,
                               XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                   XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    xcb_create_window(get(), XCB_COPY_FROM_PARENT, window, root(), 0, 0, screen().width_in_pixels,
                      screen().height_in_pixels, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    map(window);
    return window;
  }
  /// Opens a window that the window manager looks after.
  xcb_window_t openManagedWindow(int x, int y) {
    const xcb_window_t window = xcb_generate_id(get());
    const uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_create_window(get(), XCB_COPY_FROM_PARENT, window, root(), static_cast<int16_t>(x),
                      static_cast<int16_t>(y), 200, 100, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    const uint32_t placedByUser = 1;
    const uint32_t sizeHints[18] = {placedByUser, static_cast<uint32_t>(x),
                                    static_cast<uint32_t>(y)};
    xcb_change_property(get(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, 18, sizeHints);
    map(window);
    return window;
  }
  xcb_window_t activeWindow() {
    xcb_window_t active = XCB_WINDOW_NONE;
    const auto bytes = property(root(), atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW);
    if (bytes.size() >= sizeof active) std::memcpy(&active, bytes.data(), sizeof active);
    return active;
  }
  /// What the covering window heard since the last call: "down 1 at 10,20",
  /// "move to 10,20 holding 1", "up 1 at 10,20".
  std::vector<std::string> heard() const {
    sync();
    std::vector<std::string> lines;
    while (const auto event = owned(xcb_poll_for_event(get()))) {
      if (const std::string line = lineFor(*event); !line.empty()) lines.push_back(line);
    }
    return lines;
  }

  xcb_window_t createHiddenWindow() const {
    const xcb_window_t window = xcb_generate_id(get());
    xcb_create_window(get(), XCB_COPY_FROM_PARENT, window, root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    return window;
  }
  /// The window that owns a selection now, or XCB_WINDOW_NONE.
  xcb_window_t selectionOwner(const std::string& selection) {
    return wait(xcb_get_selection_owner(get(), atom(selection)), xcb_get_selection_owner_reply)
        ->owner;
  }
  /// As `xrandr --setmonitor` does it: a star before the name makes it primary, the geometry is
  /// such as "800/200x600/150+0+0" in pixels and millimetres.
  void setMonitor(const std::string& name, const std::string& geometry,
                  const std::string& output = "none") const {
    const std::string command = "xrandr --setmonitor '" + name + "' " + geometry + " " + output;
    if (std::system((command + " >/dev/null").c_str()) != 0) throw std::runtime_error(command);
  }
  void deleteMonitor(const std::string& name) {
    xcb_randr_delete_monitor(get(), root(), atom(name));
    sync();
  }
  void mapButtons(std::vector<uint8_t> map) const {
    const auto present = wait(xcb_get_pointer_mapping(get()), xcb_get_pointer_mapping_reply);
    while (map.size() < present->map_len) map.push_back(static_cast<uint8_t>(map.size() + 1));
    wait(xcb_set_pointer_mapping(get(), static_cast<uint8_t>(map.size()), map.data()),
         xcb_set_pointer_mapping_reply);
  }

  /// Becomes the desktop's settings manager with this property, or changes it.
  void publishSettings(const std::vector<uint8_t>& property) {
    const xcb_atom_t name = atom("_XSETTINGS_SETTINGS");
    const bool isNew = _settings == XCB_WINDOW_NONE;
    if (isNew) _settings = createHiddenWindow();
    xcb_change_property(get(), XCB_PROP_MODE_REPLACE, _settings, name, name, 8,
                        static_cast<uint32_t>(property.size()), property.data());
    if (isNew) {
      const xcb_atom_t selection = atom("_XSETTINGS_S0");
      xcb_set_selection_owner(get(), _settings, selection, XCB_CURRENT_TIME);
      xcb_client_message_event_t announcement{};
      announcement.response_type = XCB_CLIENT_MESSAGE;
      announcement.format = 32;
      announcement.window = root();
      announcement.type = atom("MANAGER");
      announcement.data.data32[1] = selection;
      announcement.data.data32[2] = _settings;
      xcb_send_event(get(), 0, root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                     reinterpret_cast<const char*>(&announcement));
    }
    sync();
  }

 private:
  void map(xcb_window_t window) {
    xcb_map_window(get(), window);
    xcb_flush(get());
    const bool mapped = eventually([this] {
      while (const auto event = owned(xcb_poll_for_event(get()))) {
        if ((event->response_type & 0x7f) == XCB_MAP_NOTIFY) return true;
      }
      return false;
    });
    if (!mapped) throw std::runtime_error("the window was not mapped");
  }

  xcb_window_t _settings = XCB_WINDOW_NONE;
};

/// An XSETTINGS property that holds these whole numbers after one text and one colour.
inline std::vector<uint8_t> settingsProperty(
    const std::vector<std::pair<std::string, int32_t>>& numbers) {
  std::vector<uint8_t> bytes;
  const auto add = [&bytes](uint64_t value, int size) {
    for (int i = size - 1; i >= 0; --i) bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
  };
  const auto addEntry = [&](uint64_t kind, const std::string& name, uint64_t value, int size) {
    const uint64_t serial = 7;
    add(kind << 8, 2);
    add(name.size(), 2);
    bytes.insert(bytes.end(), name.begin(), name.end());
    while (bytes.size() % 4 != 0) bytes.push_back(0);
    add(serial, 4);
    add(value, size);
  };
  const uint64_t mostSignificantFirst = 1;
  add(mostSignificantFirst << 24, 4);
  add(1, 4);
  add(numbers.size() + 2, 4);
  addEntry(1, "Net/ThemeName", 5, 4);
  for (const char letter : {'P', 'l', 'a', 'i', 'n', '\0', '\0', '\0'}) add(letter, 1);
  addEntry(2, "Net/Colour", 0x1234567812345678, 8);
  for (const auto& [name, value] : numbers) addEntry(0, name, static_cast<uint32_t>(value), 4);
  return bytes;
}

}  // namespace tapdeck::testing
