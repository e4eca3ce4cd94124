#include "Platform/Linux/X11/Keyboard/KeymapChange.h"

#include <cstring>

#include "Platform/Linux/X11/Keyboard/XkbProtocol.h"

namespace tapdeck::x11 {
namespace {

/// Lays the request's parts out one after the other.
class Writer {
 public:
  template <typename T>
  void add(const T& value) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(&value);
    _bytes.insert(_bytes.end(), bytes, bytes + sizeof value);
  }
  void align() { _bytes.resize((_bytes.size() + 3) / 4 * 4); }
  const uint8_t* data() const { return _bytes.data(); }

 private:
  std::vector<uint8_t> _bytes;
};

/// A range of keycodes without gaps, as the protocol wants it: keys in between are sent unchanged.
struct Run {
  explicit Run(const KeyMappings& mappings)
      : first(mappings.begin()->first), last(mappings.rbegin()->first) {}
  uint8_t count() const { return static_cast<uint8_t>(last - first + 1); }

  Keycode first;
  Keycode last;
};

uint16_t addKeysyms(Writer& writer, const Keymap& map, const Run& run) {
  size_t total = 0;
  for (int code = run.first; code <= run.last; ++code) {
    const KeyMapping& key = map.keys[static_cast<size_t>(code)];
    xcb_xkb_key_sym_map_t wire{};
    std::memcpy(wire.kt_index, key.types.data(), sizeof wire.kt_index);
    wire.groupInfo = key.groupInfo;
    wire.width = key.width;
    wire.nSyms = static_cast<uint16_t>(key.keysyms.size());
    writer.add(wire);
    for (const Keysym keysym : key.keysyms) writer.add(keysym);
    total += key.keysyms.size();
  }
  return static_cast<uint16_t>(total);
}

uint16_t addActions(Writer& writer, const Keymap& map, const Run& run) {
  size_t total = 0;
  for (int code = run.first; code <= run.last; ++code) {
    const auto count = map.keys[static_cast<size_t>(code)].actions.size();
    writer.add(static_cast<uint8_t>(count));
    total += count;
  }
  writer.align();
  for (int code = run.first; code <= run.last; ++code) {
    for (const auto& action : map.keys[static_cast<size_t>(code)].actions) writer.add(action);
  }
  return static_cast<uint16_t>(total);
}

}  // namespace

void sendKeysyms(xcb_connection_t* connection, Keymap& now, const KeyMappings& mappings,
                 NotifyAs notifyAs) {
  for (const auto& [code, mapping] : mappings) {
    KeyMapping& key = now.keys[code];
    auto actions = std::move(key.actions);
    key = mapping;
    key.actions = std::move(actions);
  }
  const Run run(mappings);
  Writer values;
  const uint16_t keysyms = addKeysyms(values, now, run);
  // The server sends XkbNewKeyboardNotify when the range of keycodes in the request differs from
  // its own, which it keeps where that is the wider one.
  const Keycode first = notifyAs == NotifyAs::newKeyboardNotify ? now.first + 1 : now.first;
  xcb_xkb_set_map(connection, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_MAP_PART_KEY_SYMS, 0, first,
                  now.last, 0, 0, run.first, run.count(), keysyms, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                  0, 0, 0, 0, 0, values.data());
}

void sendActions(xcb_connection_t* connection, Keymap& now, const KeyMappings& mappings) {
  for (const auto& [code, mapping] : mappings) now.keys[code].actions = mapping.actions;
  const Run run(mappings);
  Writer values;
  const uint16_t actions = addActions(values, now, run);
  xcb_xkb_set_map(connection, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_MAP_PART_KEY_ACTIONS, 0, now.first,
                  now.last, 0, 0, 0, 0, 0, run.first, run.count(), actions, 0, 0, 0, 0, 0, 0, 0, 0,
                  0, 0, 0, 0, 0, values.data());
}

}  // namespace tapdeck::x11
