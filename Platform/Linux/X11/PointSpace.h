#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "Platform/Linux/X11/Monitors.h"

namespace tapdeck::x11 {

/// A pixel of the root window.
struct Pixel {
  int16_t x, y;
};

/// Converts between global display coordinates (points, origin at the primary monitor's top-left
/// corner) and the root window's (pixels, origin at its own top-left corner), as they are at one
/// moment.
class PointSpace {
 public:
  PointSpace(const std::vector<Monitor>& monitors, double pixelsPerPoint);

  CGPoint pointAt(int pixelX, int pixelY) const;
  CGRect rectOf(const Monitor& monitor) const;
  /// The nearest pixel that the protocol can name; absent when the point is not finite.
  std::optional<Pixel> pixelAt(CGPoint point) const;

 private:
  int _originX = 0;
  int _originY = 0;
  double _pixelsPerPoint;
};

}  // namespace tapdeck::x11
