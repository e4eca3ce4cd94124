#include "Platform/Linux/X11/PointSpace.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tapdeck::x11 {
namespace {

int16_t nearestCoordinate(double pixel) {
  using Limits = std::numeric_limits<int16_t>;
  const double inRange = std::clamp<double>(std::round(pixel), Limits::lowest(), Limits::max());
  return static_cast<int16_t>(inRange);
}

}  // namespace

PointSpace::PointSpace(const std::vector<Monitor>& monitors, double pixelsPerPoint)
    : _pixelsPerPoint(pixelsPerPoint) {
  if (monitors.empty()) return;
  _originX = monitors.front().x;
  _originY = monitors.front().y;
}

CGPoint PointSpace::pointAt(int pixelX, int pixelY) const {
  return CGPointMake((pixelX - _originX) / _pixelsPerPoint, (pixelY - _originY) / _pixelsPerPoint);
}

CGRect PointSpace::rectOf(const Monitor& monitor) const {
  const CGPoint corner = pointAt(monitor.x, monitor.y);
  return CGRectMake(corner.x, corner.y, monitor.width / _pixelsPerPoint,
                    monitor.height / _pixelsPerPoint);
}

std::optional<Pixel> PointSpace::pixelAt(CGPoint point) const {
  if (!std::isfinite(point.x) || !std::isfinite(point.y)) return std::nullopt;
  return Pixel{nearestCoordinate(point.x * _pixelsPerPoint + _originX),
               nearestCoordinate(point.y * _pixelsPerPoint + _originY)};
}

}  // namespace tapdeck::x11
