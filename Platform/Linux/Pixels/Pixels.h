#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace tapdeck::pixels {

/// A rectangle of pixels, origin at the top-left corner.
struct Area {
  int x, y, width, height;
  friend bool operator==(const Area&, const Area&) = default;
};

/// The area that lies in both; without width or height when there is none.
Area intersection(const Area& a, const Area& b);

/// Pixels that somebody else owns: four bytes each, in memory order blue, green, red, unused.
struct PixelView {
  const uint8_t* bytes;
  int width, height;
  size_t bytesPerRow;

  const uint8_t* at(int x, int y) const {
    return bytes + static_cast<size_t>(y) * bytesPerRow + static_cast<size_t>(x) * 4;
  }
};

/// Pixels in memory, which the copies of this object share; converts to false when it has none.
struct PixelBuffer {
  std::shared_ptr<uint8_t> memory;
  int width = 0, height = 0;
  size_t bytesPerRow = 0;
  /// Differs from that of all other content there has been; 0 where nobody keeps count of changes.
  uint64_t version = 0;

  explicit operator bool() const { return memory != nullptr; }
  bool isShared() const { return memory.use_count() > 1; }
  PixelView view() const { return {memory.get(), width, height, bytesPerRow}; }
  uint8_t* at(int x, int y) const {
    return memory.get() + static_cast<size_t>(y) * bytesPerRow + static_cast<size_t>(x) * 4;
  }
};

/// The length of a row, rounded up to whole cache lines.
size_t alignedBytesPerRow(int width);

/// Memory at a 64-byte boundary, not initialised; without memory when none is left. For shapes that
/// pass `fits` only.
PixelBuffer allocatePixels(int width, int height, size_t bytesPerRow);

/// Whether rows of this length hold the width, and all of them are no more than 1 GiB.
bool fits(size_t width, size_t height, size_t bytesPerRow);

/// Copies an area to the same place of pixels of the same size and fills the unused byte with 255,
/// whatever it was.
void copyOpaque(const PixelView& source, const PixelBuffer& target, const Area& area);

}  // namespace tapdeck::pixels
