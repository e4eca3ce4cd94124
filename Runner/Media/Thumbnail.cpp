#include "Runner/Media/Thumbnail.h"

#include <algorithm>
#include <cmath>

#include "Platform/Images.h"
#include "Runner/Base64.h"

namespace tapdeck {
namespace {

constexpr double kCompressionFactor = 0.72;

int64_t scaledSide(double side, double scale) {
  return std::max<int64_t>(std::llround(side * scale), 1);
}

}  // namespace

std::optional<std::string> thumbnailBase64(const std::vector<uint8_t>& bytes, int64_t largestSide) {
  const auto image = platform::imageFromData(bytes);
  if (image == nullptr) return std::nullopt;
  const CGSize size = platform::sizeOf(*image);
  if (!(size.width > 0 && size.height > 0)) return std::nullopt;

  const double scale =
      std::min(static_cast<double>(largestSide) / std::max(size.width, size.height), 1.0);
  const int64_t width = scaledSide(size.width, scale);
  const int64_t height = scaledSide(size.height, scale);
  const auto bitmap = platform::createBitmap(width, height);
  if (bitmap == nullptr) return std::nullopt;
  platform::setPointSize(*bitmap, {static_cast<CGFloat>(width), static_cast<CGFloat>(height)});
  platform::copyOnto(*bitmap, *image, CGRectMake(0, 0, size.width, size.height));

  const auto jpeg = platform::jpegOf(*bitmap, kCompressionFactor);
  return jpeg ? std::optional(base64(*jpeg)) : std::nullopt;
}

}  // namespace tapdeck
