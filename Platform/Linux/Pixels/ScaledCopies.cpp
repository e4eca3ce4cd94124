#include "Platform/Linux/Pixels/ScaledCopies.h"

#include <algorithm>
#include <cstring>

namespace tapdeck::pixels {
namespace {

// Two phones may have screens of two widths.
constexpr size_t kMaxCopies = 2;

uint64_t nextVersion() {
  static uint64_t last = 0;
  return ++last;
}

}  // namespace

ScaledCopies::Copy::Copy(const Shape& shape_, const PixelView& picture)
    : shape(shape_), dirty(picture.width, picture.height) {
  dirty.addAll();
  if (shape.width == picture.width && shape.height == picture.height) return;
  scaler.emplace(AreaScaler::Size{picture.width, picture.height},
                 AreaScaler::Size{shape.width, shape.height});
}

PixelBuffer ScaledCopies::Copy::upToDate(const PixelView& picture) {
  if (dirty.isEmpty()) return pixels;
  if ((!pixels || pixels.isShared()) && !makeOwn()) return {};
  for (const Area& part : dirty.areas()) draw(picture, part);
  dirty.clear();
  pixels.version = nextVersion();
  return pixels;
}

/// Replaces pixels that are not there yet, or that somebody else still reads, by a copy to draw on.
bool ScaledCopies::Copy::makeOwn() {
  PixelBuffer own = allocatePixels(shape.width, shape.height, shape.bytesPerRow);
  if (!own) return false;
  if (pixels && dirty.share() < 1) {
    std::memcpy(own.memory.get(), pixels.memory.get(), shape.bytesPerRow * shape.height);
  } else {
    // the host compares and copies whole rows, the padding included
    for (int y = 0; y < shape.height; ++y) {
      const size_t used = size_t{4} * shape.width;
      std::memset(own.at(0, y) + used, 0, shape.bytesPerRow - used);
    }
  }
  pixels = std::move(own);
  return true;
}

void ScaledCopies::Copy::draw(const PixelView& picture, const Area& part) {
  if (scaler) {
    scaler->scale(picture, pixels, scaler->reach(part));
  } else {
    copyOpaque(picture, pixels, part);
  }
}

PixelBuffer ScaledCopies::in(const Shape& shape, const PixelView& picture) {
  auto found = std::find_if(_copies.begin(), _copies.end(),
                            [&](const Copy& copy) { return copy.shape == shape; });
  if (found == _copies.end()) {
    if (_copies.size() == kMaxCopies) _copies.pop_back();
    found = _copies.emplace(_copies.end(), shape, picture);
  }
  // the most recently used comes first, so that the one to drop is the last
  std::rotate(_copies.begin(), found, found + 1);
  return _copies.front().upToDate(picture);
}

void ScaledCopies::markDirty(std::span<const Area> parts) {
  for (Copy& copy : _copies) copy.dirty.add(parts);
}

void ScaledCopies::markAllDirty() {
  for (Copy& copy : _copies) copy.dirty.addAll();
}

}  // namespace tapdeck::pixels
