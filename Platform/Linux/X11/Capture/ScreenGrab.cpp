#include "Platform/Linux/X11/Capture/ScreenGrab.h"

#include <xcb/shm.h>

namespace tapdeck::x11 {
namespace {

constexpr uint32_t kAllPlanes = 0xffffffff;

size_t bytesOf(const pixels::Area& area) {
  return size_t{4} * static_cast<size_t>(area.width) * static_cast<size_t>(area.height);
}

size_t bytesOf(std::span<const pixels::Area> areas) {
  size_t sum = 0;
  for (const pixels::Area& area : areas) sum += bytesOf(area);
  return sum;
}

/// An area in the integer types of the protocol; the server refuses one that is not on the screen.
struct WireArea {
  explicit WireArea(const pixels::Area& area)
      : x(static_cast<int16_t>(area.x)),
        y(static_cast<int16_t>(area.y)),
        width(static_cast<uint16_t>(area.width)),
        height(static_cast<uint16_t>(area.height)) {}
  int16_t x, y;
  uint16_t width, height;
};

pixels::Area inRoot(const pixels::Area& part, const pixels::Area& picture) {
  return {part.x + picture.x, part.y + picture.y, part.width, part.height};
}

xcb_shm_get_image_cookie_t requestShared(const Connection& connection, const Segment& segment,
                                         size_t offset, const pixels::Area& area) {
  const WireArea wire(area);
  return xcb_shm_get_image(connection.get(), connection.root(), wire.x, wire.y, wire.width,
                           wire.height, kAllPlanes, XCB_IMAGE_FORMAT_Z_PIXMAP, segment.number,
                           static_cast<uint32_t>(offset));
}

}  // namespace

pixels::PixelBuffer ScreenGrab::grab(const pixels::Area& area) {
  if (!_format || !pixels::fits(area.width, area.height, size_t{4} * area.width)) return {};
  if (_format->isPlain()) {
    if (const auto segment = _segments.take(bytesOf(area))) return grabInto(*segment, area);
  }
  pixels::PixelBuffer picture =
      pixels::allocatePixels(area.width, area.height, pixels::alignedBytesPerRow(area.width));
  const pixels::Area whole{0, 0, area.width, area.height};
  if (!picture || !refresh(picture, area, std::span(&whole, 1))) return {};
  return picture;
}

pixels::PixelBuffer ScreenGrab::grabInto(const Segment& segment, const pixels::Area& area) {
  const auto request = requestShared(_connection, segment, 0, area);
  if (_connection.wait(request, xcb_shm_get_image_reply) == nullptr) return {};
  return {segment.memory, area.width, area.height, size_t{4} * area.width};
}

bool ScreenGrab::refresh(const pixels::PixelBuffer& picture, const pixels::Area& area,
                         std::span<const pixels::Area> parts) {
  if (const auto segment = _segments.take(bytesOf(parts))) {
    return refreshShared(*segment, picture, area, parts);
  }
  return refreshPlain(picture, area, parts);
}

bool ScreenGrab::refreshShared(const Segment& segment, const pixels::PixelBuffer& picture,
                               const pixels::Area& area, std::span<const pixels::Area> parts) {
  std::vector<xcb_shm_get_image_cookie_t> requests;
  size_t offset = 0;
  for (const pixels::Area& part : parts) {
    requests.push_back(requestShared(_connection, segment, offset, inRoot(part, area)));
    offset += bytesOf(part);
  }
  bool isWhole = true;
  offset = 0;
  for (size_t i = 0; i < parts.size(); ++i) {
    if (_connection.wait(requests[i], xcb_shm_get_image_reply) != nullptr) {
      put(segment.memory.get() + offset, picture, parts[i]);
    } else {
      isWhole = false;
    }
    offset += bytesOf(parts[i]);
  }
  return isWhole;
}

bool ScreenGrab::refreshPlain(const pixels::PixelBuffer& picture, const pixels::Area& area,
                              std::span<const pixels::Area> parts) {
  std::vector<xcb_get_image_cookie_t> requests;
  for (const pixels::Area& part : parts) {
    const WireArea wire(inRoot(part, area));
    requests.push_back(xcb_get_image(_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP,
                                     _connection.root(), wire.x, wire.y, wire.width, wire.height,
                                     kAllPlanes));
  }
  bool isWhole = true;
  for (size_t i = 0; i < parts.size(); ++i) {
    const auto reply = _connection.wait(requests[i], xcb_get_image_reply);
    const bool hasAll =
        reply != nullptr &&
        static_cast<size_t>(xcb_get_image_data_length(reply.get())) >= bytesOf(parts[i]);
    if (hasAll) put(xcb_get_image_data(reply.get()), picture, parts[i]);
    isWhole = isWhole && hasAll;
  }
  return isWhole;
}

void ScreenGrab::put(const uint8_t* from, const pixels::PixelBuffer& picture,
                     const pixels::Area& place) const {
  for (int y = 0; y < place.height; ++y) {
    _format->convert(from + size_t{4} * place.width * y, picture.at(place.x, place.y + y),
                     place.width);
  }
}

}  // namespace tapdeck::x11
