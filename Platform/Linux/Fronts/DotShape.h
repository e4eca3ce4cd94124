#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <vector>

#include "Platform/OverlayWindow.h"

namespace tapdeck::platform {

// How a layer with rounded corners and a shadow looks in pixels. Pure functions.

/// The layer over its shadow on a transparent background, `side` pixels square, in premultiplied
/// ARGB, the window's alpha applied. What lies outside the content is cut off, as a window cuts it.
std::vector<uint32_t> layerPixels(const platform::OverlayStyle& style, int side,
                                  double pixelsPerPoint);

/// The rows of a disc `side` pixels wide.
std::vector<xcb_rectangle_t> discRows(int side);

}  // namespace tapdeck::platform
