#include "Platform/Linux/X11/Capture/RootFormat.h"

#include <bit>
#include <cstring>

namespace tapdeck::x11 {
namespace {

const xcb_visualtype_t* rootVisual(const xcb_screen_t& screen) {
  for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0;
       xcb_depth_next(&depth)) {
    for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0;
         xcb_visualtype_next(&visual)) {
      if (visual.data->visual_id == screen.root_visual) return visual.data;
    }
  }
  return nullptr;
}

bool hasFourBytes(const xcb_setup_t* setup, uint8_t depth) {
  for (auto format = xcb_setup_pixmap_formats_iterator(setup); format.rem > 0;
       xcb_format_next(&format)) {
    if (format.data->depth == depth) return format.data->bits_per_pixel == 32;
  }
  return false;
}

/// By how many bits to shift a pixel right, so that the upper 8 bits of a colour come lowest.
int shiftFor(uint32_t mask) {
  return static_cast<int>(std::bit_width(mask)) - 8;
}

}  // namespace

RootFormat::RootFormat(const xcb_visualtype_t& visual)
    : _isPlain(visual.red_mask == 0xff0000 && visual.green_mask == 0xff00 &&
               visual.blue_mask == 0xff),
      _redShift(shiftFor(visual.red_mask)),
      _greenShift(shiftFor(visual.green_mask)),
      _blueShift(shiftFor(visual.blue_mask)) {}

std::optional<RootFormat> RootFormat::of(const Connection& connection) {
  const xcb_setup_t* setup = xcb_get_setup(connection.get());
  const xcb_screen_t& screen = connection.screen();
  const auto* visual = rootVisual(screen);
  const bool isDirect = visual != nullptr && visual->_class == XCB_VISUAL_CLASS_TRUE_COLOR &&
                        std::popcount(visual->red_mask) >= 8 &&
                        std::popcount(visual->green_mask) >= 8 &&
                        std::popcount(visual->blue_mask) >= 8;
  if (!isDirect || !hasFourBytes(setup, screen.root_depth) ||
      setup->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST) {
    return std::nullopt;
  }
  return RootFormat(*visual);
}

void RootFormat::convert(const uint8_t* from, uint8_t* to, int count) const {
  if (_isPlain) {
    std::memcpy(to, from, size_t{4} * count);
    return;
  }
  for (int i = 0; i < count; ++i) {
    uint32_t pixel;
    std::memcpy(&pixel, from + size_t{4} * i, sizeof pixel);
    const uint32_t converted = (pixel >> _redShift & 0xff) << 16 |
                               (pixel >> _greenShift & 0xff) << 8 | (pixel >> _blueShift & 0xff);
    std::memcpy(to + size_t{4} * i, &converted, sizeof converted);
  }
}

}  // namespace tapdeck::x11
