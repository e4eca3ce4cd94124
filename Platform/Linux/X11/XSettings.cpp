#include "Platform/Linux/X11/XSettings.h"

#include <string_view>

namespace tapdeck::quartz {
namespace {

enum class Kind : uint8_t { integer = 0, text = 1, color = 2 };

/// Reads the property of the XSETTINGS protocol. Any read past its end makes it bad for good, and
/// every read of a bad one gives 0.
class SettingsReader {
 public:
  explicit SettingsReader(const std::vector<uint8_t>& bytes) : _bytes(bytes) {
    const uint8_t mostSignificantFirst = 1;
    _bigEndian = u8() == mostSignificantFirst;
    skip(3 + 4);
  }

  bool isGood() const { return _good; }
  uint8_t u8() { return static_cast<uint8_t>(number(1)); }
  uint16_t u16() { return static_cast<uint16_t>(number(2)); }
  uint32_t u32() { return number(4); }
  void skip(size_t count) { take(count); }
  /// Text is padded to a multiple of four bytes.
  std::string_view text(size_t length) {
    const size_t start = take(length);
    skip((4 - length % 4) % 4);
    if (!_good) return {};
    return {reinterpret_cast<const char*>(_bytes.data()) + start, length};
  }

 private:
  size_t take(size_t count) {
    const size_t start = _at;
    _good = _good && count <= _bytes.size() - _at;
    if (_good) _at += count;
    return start;
  }
  uint32_t number(size_t size) {
    const size_t start = take(size);
    if (!_good) return 0;
    uint32_t value = 0;
    for (size_t i = 0; i < size; ++i) {
      value = value << 8 | _bytes[start + (_bigEndian ? i : size - 1 - i)];
    }
    return value;
  }

  const std::vector<uint8_t>& _bytes;
  size_t _at = 0;
  bool _good = true;
  bool _bigEndian = false;
};

}  // namespace

xcb_window_t settingsOwner(Connection& connection) {
  const xcb_atom_t selection =
      connection.atom("_XSETTINGS_S" + std::to_string(connection.screenNumber()));
  const auto owner = connection.wait(xcb_get_selection_owner(connection.get(), selection),
                                     xcb_get_selection_owner_reply);
  if (owner == nullptr) return XCB_WINDOW_NONE;
  return owner->owner;
}

IntegerSettings querySettings(Connection& connection, xcb_window_t owner) {
  if (owner == XCB_WINDOW_NONE) return {};
  const xcb_atom_t settings = connection.atom("_XSETTINGS_SETTINGS");
  return parseSettings(connection.property(owner, settings, settings));
}

IntegerSettings parseSettings(const std::vector<uint8_t>& bytes) {
  IntegerSettings settings;
  SettingsReader reader(bytes);
  for (uint32_t left = reader.u32(); left > 0 && reader.isGood(); --left) {
    const auto kind = static_cast<Kind>(reader.u8());
    reader.skip(1);
    const std::string_view name = reader.text(reader.u16());
    reader.skip(4);
    switch (kind) {
      case Kind::integer: {
        const auto value = static_cast<int32_t>(reader.u32());
        if (reader.isGood()) settings.insert_or_assign(std::string(name), value);
        break;
      }
      case Kind::text:
        reader.text(reader.u32());
        break;
      case Kind::color:
        reader.skip(8);
        break;
      default:
        return settings;
    }
  }
  return settings;
}

}  // namespace tapdeck::quartz
