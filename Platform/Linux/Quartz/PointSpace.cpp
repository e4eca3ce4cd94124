#include "Platform/Linux/Quartz/PointSpace.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "Platform/Linux/Quartz/Session.h"

namespace tapdeck::quartz {
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

PointSpace currentPointSpace() {
  return {monitors(), pixelsPerPoint()};
}

std::optional<Pixel> pointerPixel() {
  if (session() == nullptr) return std::nullopt;
  if (const auto waiting = session()->poster.waitingMotion()) return waiting;
  const Connection& connection = session()->connection;
  const auto pointer = connection.wait(xcb_query_pointer(connection.get(), connection.root()),
                                       xcb_query_pointer_reply);
  if (pointer == nullptr) return std::nullopt;
  return Pixel{pointer->root_x, pointer->root_y};
}

}  // namespace tapdeck::quartz
