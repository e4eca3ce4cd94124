#pragma once

#include <cstddef>
#include <cstdint>

namespace tapdeck {

/// How a frame's pixels lie in memory: `rows` rows, `stride` bytes from one to the next, of which
/// the first `rowBytes` are pixels and the rest padding.
struct FrameLayout {
  size_t rowBytes;
  size_t stride;
  size_t rows;
};

/// Whether any pixel byte of the two frames differs by more than 4, which is more than what a
/// display's dithering does. Padding is not looked at. Any thread.
bool framesDiffer(const uint8_t* a, const uint8_t* b, const FrameLayout& layout);

}  // namespace tapdeck
