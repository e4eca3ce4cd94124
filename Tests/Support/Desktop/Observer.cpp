#include "Tests/Support/Desktop/Observer.h"

#include <xcb/randr.h>

#include <stdexcept>

namespace tapdeck::testing {
namespace {

std::string lineFor(const xcb_generic_event_t& event) {
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

}  // namespace

Observer::Observer() : _connection(xcb_connect(nullptr, nullptr), &xcb_disconnect) {
  if (xcb_connection_has_error(get()) != 0) throw std::runtime_error("no X server to observe");
  _screen = xcb_setup_roots_iterator(xcb_get_setup(get())).data;
}

void Observer::sync() const {
  owned(xcb_get_input_focus_reply(get(), xcb_get_input_focus(get()), nullptr));
}

Observer::Pointer Observer::pointer() const {
  const auto reply =
      owned(xcb_query_pointer_reply(get(), xcb_query_pointer(get(), root()), nullptr));
  if (reply == nullptr) throw std::runtime_error("the X server does not answer");
  return {reply->root_x, reply->root_y, static_cast<unsigned>(reply->mask >> 8 & 0x1f)};
}

xcb_window_t Observer::coverScreen() {
  const xcb_window_t window = xcb_generate_id(get());
  const uint32_t values[] = {_screen->white_pixel, 1,
                             XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                 XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_STRUCTURE_NOTIFY};
  xcb_create_window(get(), XCB_COPY_FROM_PARENT, window, root(), 0, 0, _screen->width_in_pixels,
                    _screen->height_in_pixels, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                    XCB_COPY_FROM_PARENT,
                    XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
  map(window);
  return window;
}

xcb_window_t Observer::openManagedWindow(int x, int y) {
  const xcb_window_t window = xcb_generate_id(get());
  const uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_create_window(get(), XCB_COPY_FROM_PARENT, window, root(), static_cast<int16_t>(x),
                    static_cast<int16_t>(y), 200, 100, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                    XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
  const uint32_t placedByUser = 1;
  const uint32_t sizeHints[18] = {placedByUser, static_cast<uint32_t>(x), static_cast<uint32_t>(y)};
  xcb_change_property(get(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS,
                      XCB_ATOM_WM_SIZE_HINTS, 32, 18, sizeHints);
  map(window);
  return window;
}

void Observer::map(xcb_window_t window) {
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

xcb_window_t Observer::activeWindow() const {
  const auto reply = owned(xcb_get_property_reply(
      get(), xcb_get_property(get(), 0, root(), atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW, 0, 1),
      nullptr));
  if (reply == nullptr || reply->length == 0) return XCB_WINDOW_NONE;
  return *static_cast<xcb_window_t*>(xcb_get_property_value(reply.get()));
}

std::vector<std::string> Observer::heard() const {
  sync();
  std::vector<std::string> lines;
  while (const auto event = owned(xcb_poll_for_event(get()))) {
    if (const std::string line = lineFor(*event); !line.empty()) lines.push_back(line);
  }
  return lines;
}

xcb_atom_t Observer::atom(const std::string& name) const {
  const auto request = xcb_intern_atom(get(), 0, static_cast<uint16_t>(name.size()), name.data());
  return owned(xcb_intern_atom_reply(get(), request, nullptr))->atom;
}

std::string Observer::nameOf(xcb_atom_t atom) const {
  const auto reply = owned(xcb_get_atom_name_reply(get(), xcb_get_atom_name(get(), atom), nullptr));
  if (reply == nullptr) return {};
  return {xcb_get_atom_name_name(reply.get()),
          static_cast<size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

xcb_window_t Observer::createHiddenWindow() const {
  const xcb_window_t window = xcb_generate_id(get());
  xcb_create_window(get(), XCB_COPY_FROM_PARENT, window, root(), -1, -1, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
  return window;
}

xcb_window_t Observer::selectionOwner(const std::string& selection) const {
  const auto request = xcb_get_selection_owner(get(), atom(selection));
  return owned(xcb_get_selection_owner_reply(get(), request, nullptr))->owner;
}

void Observer::setMonitor(const std::string& name, const std::string& geometry,
                          const std::string& output) const {
  const std::string command = "xrandr --setmonitor '" + name + "' " + geometry + " " + output;
  if (std::system((command + " >/dev/null").c_str()) != 0) throw std::runtime_error(command);
}

void Observer::deleteMonitor(const std::string& name) const {
  xcb_randr_delete_monitor(get(), root(), atom(name));
  sync();
}

void Observer::mapButtons(std::vector<uint8_t> map) const {
  const auto present =
      owned(xcb_get_pointer_mapping_reply(get(), xcb_get_pointer_mapping(get()), nullptr));
  for (size_t i = map.size(); i < present->map_len; ++i) {
    map.push_back(static_cast<uint8_t>(i + 1));
  }
  owned(xcb_set_pointer_mapping_reply(
      get(), xcb_set_pointer_mapping(get(), static_cast<uint8_t>(map.size()), map.data()),
      nullptr));
}

void Observer::publishSettings(const std::vector<uint8_t>& property) {
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

std::vector<uint8_t> settingsProperty(const std::vector<std::pair<std::string, int32_t>>& numbers) {
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
