#include "Platform/Linux/X11/Keyboard/Keymap.h"

#include <algorithm>
#include <cstring>
#include <span>

#include "Platform/Linux/Support/ByteReader.h"
#include "Platform/Linux/X11/Keyboard/XkbProtocol.h"

namespace tapdeck::x11 {
namespace {

constexpr uint16_t kParts = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_KEY_ACTIONS |
                            XCB_XKB_MAP_PART_KEY_BEHAVIORS | XCB_XKB_MAP_PART_MODIFIER_MAP |
                            XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;

/// Reads the reply's parts in the order in which the protocol lays them out.
class KeymapReader {
 public:
  explicit KeymapReader(std::span<const uint8_t> reply) : _reader(reply) {}

  std::optional<Keymap> read() {
    _header = next<xcb_xkb_get_map_reply_t>();
    _map.first = _header.minKeyCode;
    _map.last = _header.maxKeyCode;
    readKeysyms();
    readActions();
    readBehaviors();
    readModifiers();
    if (!isGood()) return std::nullopt;
    return std::move(_map);
  }

 private:
  /// All zero when there are not so many bytes left.
  template <typename Wire>
  Wire next() {
    Wire value{};
    const auto bytes = _reader.bytes(sizeof value);
    if (!bytes.empty()) std::memcpy(&value, bytes.data(), bytes.size());
    return value;
  }
  bool isGood() const { return _isConsistent && _reader.isGood(); }
  void align() { _reader.align(4); }

  void readKeysyms() {
    if ((_header.present & XCB_XKB_MAP_PART_KEY_SYMS) == 0) return;
    for (int i = 0; i < _header.nKeySyms && isGood(); ++i) {
      const auto wire = next<xcb_xkb_key_sym_map_t>();
      KeyMapping& key = _map.keys[static_cast<uint8_t>(_header.firstKeySym + i)];
      std::copy(std::begin(wire.kt_index), std::end(wire.kt_index), key.types.begin());
      key.groupInfo = wire.groupInfo;
      key.width = wire.width;
      _isConsistent = wire.nSyms == key.groups() * wire.width && key.groups() <= 4;
      for (int sym = 0; sym < wire.nSyms && isGood(); ++sym) key.keysyms.push_back(next<Keysym>());
    }
  }
  void readActions() {
    if ((_header.present & XCB_XKB_MAP_PART_KEY_ACTIONS) == 0) return;
    const auto counts = _reader.bytes(_header.nKeyActions);
    align();
    for (int i = 0; i < _header.nKeyActions && isGood(); ++i) {
      KeyMapping& key = _map.keys[static_cast<uint8_t>(_header.firstKeyAction + i)];
      for (int left = counts[static_cast<size_t>(i)]; left > 0 && isGood(); --left) {
        key.actions.push_back(next<KeyAction>());
      }
    }
  }
  void readBehaviors() {
    if ((_header.present & XCB_XKB_MAP_PART_KEY_BEHAVIORS) == 0) return;
    for (int i = 0; i < _header.totalKeyBehaviors && isGood(); ++i) {
      const auto wire = next<xcb_xkb_set_behavior_t>();
      _map.isSpecial[wire.keycode] = true;
    }
  }
  void readModifiers() {
    if ((_header.present & XCB_XKB_MAP_PART_MODIFIER_MAP) != 0) {
      for (int i = 0; i < _header.totalModMapKeys && isGood(); ++i) {
        const auto wire = next<xcb_xkb_key_mod_map_t>();
        _map.modifiers[wire.keycode] = wire.mods;
      }
      align();
    }
    if ((_header.present & XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP) == 0) return;
    for (int i = 0; i < _header.totalVModMapKeys && isGood(); ++i) {
      const auto wire = next<xcb_xkb_key_v_mod_map_t>();
      if (wire.vmods != 0) _map.isSpecial[wire.keycode] = true;
    }
  }

  ByteReader _reader;
  bool _isConsistent = true;
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
  return KeymapReader({reply, size}).read();
}

std::optional<Keymap> fetchKeymap(const Connection& connection) {
  const auto reply =
      connection.wait(xcb_xkb_get_map(connection.get(), XCB_XKB_ID_USE_CORE_KBD, kParts, 0, 0, 0, 0,
                                      0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0),
                      xcb_xkb_get_map_reply);
  if (reply == nullptr) return std::nullopt;
  constexpr size_t fixedSize = 32;
  return readKeymap(reinterpret_cast<const uint8_t*>(reply.get()),
                    fixedSize + size_t{reply->length} * 4);
}

}  // namespace tapdeck::x11
