#include "Platform/Linux/X11/XSettings.h"

#include <bit>
#include <string_view>

#include "Platform/Linux/Support/ByteReader.h"

namespace tapdeck::x11 {
namespace {

enum class Kind : uint8_t { integer = 0, text = 1, color = 2 };

std::endian byteOrderOf(uint8_t header) {
  return header == XCB_IMAGE_ORDER_MSB_FIRST ? std::endian::big : std::endian::little;
}

/// Text is padded to a multiple of four bytes; so is all that comes before it.
std::string_view readText(ByteReader& reader, size_t length) {
  const auto bytes = reader.bytes(length);
  reader.align(4);
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

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
  ByteReader reader(bytes);
  reader.setOrder(byteOrderOf(reader.u8()));
  reader.skip(3 + 4);  // padding, and how often the settings have changed
  for (uint32_t left = reader.u32(); left > 0 && reader.isGood(); --left) {
    const auto kind = static_cast<Kind>(reader.u8());
    reader.skip(1);
    const std::string_view name = readText(reader, reader.u16());
    reader.skip(4);  // when this setting changed last
    switch (kind) {
      case Kind::integer: {
        const auto value = static_cast<int32_t>(reader.u32());
        if (reader.isGood()) settings.insert_or_assign(std::string(name), value);
        break;
      }
      case Kind::text:
        readText(reader, reader.u32());
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

}  // namespace tapdeck::x11
