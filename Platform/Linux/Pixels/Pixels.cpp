#include "Platform/Linux/Pixels/Pixels.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace tapdeck::pixels {
namespace {

constexpr size_t kCacheLine = 64;
constexpr size_t kMaxBytes = size_t{1} << 30;
constexpr uint32_t kUnusedByte =
    0xff000000;  // the last in memory: X and this code are for little-endian

struct AlignedDelete {
  void operator()(uint8_t* memory) const {
    ::operator delete (memory, std::align_val_t{kCacheLine});
  }
};

}  // namespace

Area intersection(const Area& a, const Area& b) {
  const int left = std::max(a.x, b.x);
  const int top = std::max(a.y, b.y);
  const int right = std::min(a.x + a.width, b.x + b.width);
  const int bottom = std::min(a.y + a.height, b.y + b.height);
  return {left, top, std::max(0, right - left), std::max(0, bottom - top)};
}

size_t alignedBytesPerRow(int width) {
  return (static_cast<size_t>(width) * 4 + kCacheLine - 1) / kCacheLine * kCacheLine;
}

bool fits(size_t width, size_t height, size_t bytesPerRow) {
  return width > 0 && height > 0 && width <= kMaxBytes / 4 && bytesPerRow >= width * 4 &&
         bytesPerRow <= kMaxBytes && height <= kMaxBytes / bytesPerRow;
}

PixelBuffer allocatePixels(int width, int height, size_t bytesPerRow) {
  const size_t size = bytesPerRow * static_cast<size_t>(height);
  auto* memory =
      static_cast<uint8_t*>(::operator new (size, std::align_val_t{kCacheLine}, std::nothrow));
  if (memory == nullptr) return {};
  return {std::shared_ptr<uint8_t>(memory, AlignedDelete()), width, height, bytesPerRow, 0};
}

void copyOpaque(const PixelView& source, const PixelBuffer& target, const Area& area) {
  for (int y = area.y; y < area.y + area.height; ++y) {
    const uint8_t* from = source.at(area.x, y);
    uint8_t* to = target.at(area.x, y);
    for (int i = 0; i < area.width; ++i) {
      uint32_t pixel;
      std::memcpy(&pixel, from + size_t{4} * i, sizeof pixel);
      pixel |= kUnusedByte;
      std::memcpy(to + size_t{4} * i, &pixel, sizeof pixel);
    }
  }
}

}  // namespace tapdeck::pixels
