#include "Platform/Linux/X11/Keyboard/Keymap.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "Platform/Linux/X11/Keyboard/XkbProtocol.h"

namespace tapdeck::x11 {
namespace {

constexpr uint16_t kParts = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_KEY_ACTIONS |
                            XCB_XKB_MAP_PART_KEY_BEHAVIORS | XCB_XKB_MAP_PART_MODIFIER_MAP |
                            XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;

/// Reads the reply's parts in the order in which the protocol lays them out.
class Reader {
 public:
  Reader(const uint8_t* bytes, size_t size) : _bytes(bytes), _size(size) {
    if (size < sizeof _header) {
      _good = false;
    } else {
      std::memcpy(&_header, bytes, sizeof _header);
      _at = sizeof _header;
    }
  }

  std::optional<Keymap> read() {
    if (!_good) return std::nullopt;
    _map.first = _header.minKeyCode;
    _map.last = _header.maxKeyCode;
    readKeysyms();
    readActions();
    readBehaviors();
    readModifiers();
    if (!_good) return std::nullopt;
    return std::move(_map);
  }

 private:
  template <typename T>
  T next() {
    T value{};
    const size_t start = skip(sizeof value);
    if (_good) std::memcpy(&value, _bytes + start, sizeof value);
    return value;
  }
  size_t skip(size_t count) {
    const size_t start = _at;
    _good = _good && count <= _size - _at;
    if (_good) _at += count;
    return start;
  }
  void align() { skip((4 - _at % 4) % 4); }

  void readKeysyms() {
    if ((_header.present & XCB_XKB_MAP_PART_KEY_SYMS) == 0) return;
    for (int i = 0; i < _header.nKeySyms && _good; ++i) {
      const auto wire = next<xcb_xkb_key_sym_map_t>();
      KeyMapping& key = _map.keys[static_cast<uint8_t>(_header.firstKeySym + i)];
      std::copy(std::begin(wire.kt_index), std::end(wire.kt_index), key.types.begin());
      key.groupInfo = wire.groupInfo;
      key.width = wire.width;
      _good = _good && wire.nSyms == key.groups() * wire.width && key.groups() <= 4;
      for (int sym = 0; sym < wire.nSyms && _good; ++sym) key.keysyms.push_back(next<Keysym>());
    }
  }
  void readActions() {
    if ((_header.present & XCB_XKB_MAP_PART_KEY_ACTIONS) == 0) return;
    const size_t counts = skip(_header.nKeyActions);
    align();
    for (int i = 0; i < _header.nKeyActions && _good; ++i) {
      KeyMapping& key = _map.keys[static_cast<uint8_t>(_header.firstKeyAction + i)];
      for (int left = _bytes[counts + static_cast<size_t>(i)]; left > 0 && _good; --left) {
        key.actions.push_back(next<KeyAction>());
      }
    }
  }
  void readBehaviors() {
    if ((_header.present & XCB_XKB_MAP_PART_KEY_BEHAVIORS) == 0) return;
    for (int i = 0; i < _header.totalKeyBehaviors && _good; ++i) {
      const auto wire = next<xcb_xkb_set_behavior_t>();
      _map.isSpecial[wire.keycode] = true;
    }
  }
  void readModifiers() {
    if ((_header.present & XCB_XKB_MAP_PART_MODIFIER_MAP) != 0) {
      for (int i = 0; i < _header.totalModMapKeys && _good; ++i) {
        const auto wire = next<xcb_xkb_key_mod_map_t>();
        _map.modifiers[wire.keycode] = wire.mods;
      }
      align();
    }
    if ((_header.present & XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP) == 0) return;
    for (int i = 0; i < _header.totalVModMapKeys && _good; ++i) {
      const auto wire = next<xcb_xkb_key_v_mod_map_t>();
      if (wire.vmods != 0) _map.isSpecial[wire.keycode] = true;
    }
  }

  const uint8_t* _bytes;
  size_t _size;
  size_t _at = 0;
  bool _good = true;
  xcb_xkb_get_map_reply_t _header{};
  Keymap _map;
};

}  // namespace

int KeyMapping::groupFor(int effective) const {
  if (groups() == 0 || effective < 0) return 0;
  if (effective < groups()) return effective;
  constexpr int clamp = 0x40;
  constexpr int redirect = 0x80;
  switch (groupInfo & 0xc0) {
    case clamp:
      return groups() - 1;
    case redirect: {
      const int chosen = (groupInfo >> 4) & 0x03;
      return chosen < groups() ? chosen : 0;
    }
    default:
      return effective % groups();
  }
}

Keysym KeyMapping::unshiftedKeysym(int group) const {
  const auto place = static_cast<size_t>(group) * width;
  return group < groups() && place < keysyms.size() ? keysyms[place] : kNoKeysym;
}

int Keymap::groups() const {
  int most = 0;
  for (const KeyMapping& key : keys) most = std::max(most, key.groups());
  return most;
}

std::optional<Keycode> Keymap::keyFor(Keysym keysym, int effective) const {
  for (int code = first; code <= last; ++code) {
    const KeyMapping& key = keys[static_cast<size_t>(code)];
    if (keysym != kNoKeysym && key.unshiftedKeysym(key.groupFor(effective)) == keysym) {
      return static_cast<Keycode>(code);
    }
  }
  return std::nullopt;
}

std::optional<Keymap> readKeymap(const uint8_t* reply, size_t size) {
  return Reader(reply, size).read();
}

std::optional<Keymap> fetchKeymap(xcb_connection_t* connection) {
  const auto cookie = xcb_xkb_get_map(connection, XCB_XKB_ID_USE_CORE_KBD, kParts, 0, 0, 0, 0, 0, 0,
                                      0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
  xcb_generic_error_t* error = nullptr;
  const std::unique_ptr<xcb_xkb_get_map_reply_t, decltype(&std::free)> reply(
      xcb_xkb_get_map_reply(connection, cookie, &error), &std::free);
  std::free(error);
  if (reply == nullptr) return std::nullopt;
  constexpr size_t fixedSize = 32;
  return readKeymap(reinterpret_cast<const uint8_t*>(reply.get()),
                    fixedSize + size_t{reply->length} * 4);
}

}  // namespace tapdeck::x11
