#include "Platform/Linux/Fronts/DotShape.h"

#include <algorithm>
#include <cmath>

namespace tapdeck::platform {
namespace {

constexpr double kFull = 255;

/// How far a place lies outside a square of `side` with rounded corners, below 0 inside it; all in
/// pixels.
double distanceOutside(double x, double y, double side, double radius) {
  const double half = side / 2;
  const double dx = std::abs(x - half) - (half - radius);
  const double dy = std::abs(y - half) - (half - radius);
  return std::hypot(std::max(dx, 0.0), std::max(dy, 0.0)) + std::min(std::max(dx, dy), 0.0) -
         radius;
}

/// The share of a straight edge's Gaussian blur that is left at this distance outside it.
double blurred(double distance, double deviation) {
  return 0.5 * std::erfc(distance / (deviation * std::sqrt(2.0)));
}

uint32_t premultiplied(const platform::Colour& over, double cover, const platform::Colour& under,
                       double shade, double alpha) {
  const double below = (1 - cover) * shade;
  const auto channel = [&](double front, double back) {
    return static_cast<uint32_t>(std::lround(kFull * alpha * (front * cover + back * below)));
  };
  return channel(1, 1) << 24 | channel(over.red, under.red) << 16 |
         channel(over.green, under.green) << 8 | channel(over.blue, under.blue);
}

}  // namespace

std::vector<uint32_t> layerPixels(const platform::OverlayStyle& style, int side,
                                  double pixelsPerPoint) {
  std::vector<uint32_t> pixels;
  pixels.reserve(static_cast<size_t>(side) * static_cast<size_t>(side));
  const double radius = std::min(style.cornerRadius * pixelsPerPoint, side / 2.0);
  for (int y = 0; y < side; ++y) {
    for (int x = 0; x < side; ++x) {
      const double distance = distanceOutside(x + 0.5, y + 0.5, side, radius);
      const double cover = std::clamp(0.5 - distance, 0.0, 1.0) * style.layerBackground.alpha;
      const double shade =
          blurred(distance, style.shadowRadius * pixelsPerPoint) * style.shadowOpacity;
      pixels.push_back(
          premultiplied(style.layerBackground, cover, style.layerShadow, shade, style.alpha));
    }
  }
  return pixels;
}

std::vector<xcb_rectangle_t> discRows(int side) {
  std::vector<xcb_rectangle_t> rows;
  const double radius = side / 2.0;
  for (int y = 0; y < side; ++y) {
    const double fromCentre = y + 0.5 - radius;
    const double half = std::sqrt(radius * radius - fromCentre * fromCentre);
    const long left = std::lround(radius - half);
    const long right = std::lround(radius + half);
    rows.push_back({static_cast<int16_t>(left), static_cast<int16_t>(y),
                    static_cast<uint16_t>(right - left), 1});
  }
  return rows;
}

}  // namespace tapdeck::platform
