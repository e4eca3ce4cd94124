#include "Runner/Display/FrameComparison.h"

#include <cstring>

namespace tapdeck {
namespace {

constexpr uint8_t kTolerance = 4;
// As short as keeps the cost of starting on one small.
constexpr size_t kBlockBytes = 1024;

/// Compilers make vector instructions of this: a maximum, a minimum, a difference, a maximum.
bool differWithin(size_t bytes, const uint8_t* a, const uint8_t* b) {
  uint8_t largest = 0;
  for (size_t i = 0; i < bytes; ++i) {
    const uint8_t one = a[i];
    const uint8_t other = b[i];
    const uint8_t more = one > other ? one : other;
    const uint8_t less = one > other ? other : one;
    const uint8_t difference = more - less;
    largest = largest > difference ? largest : difference;
  }
  return largest > kTolerance;
}

/// A screen is mostly still, and nothing tells that two blocks are equal faster than the system's
/// own comparison, which knows the processor it runs on.
bool blocksDiffer(const uint8_t* a, const uint8_t* b) {
  return std::memcmp(a, b, kBlockBytes) != 0 && differWithin(kBlockBytes, a, b);
}

bool rowsDiffer(const uint8_t* a, const uint8_t* b, size_t bytes) {
  if (bytes < kBlockBytes) return differWithin(bytes, a, b);
  const size_t last = bytes - kBlockBytes;
  for (size_t i = 0; i < last; i += kBlockBytes) {
    if (blocksDiffer(a + i, b + i)) return true;
  }
  // overlaps the one before it where the row is no whole number of blocks
  return blocksDiffer(a + last, b + last);
}

}  // namespace

bool framesDiffer(const uint8_t* a, const uint8_t* b, const FrameLayout& layout) {
  for (size_t row = 0; row < layout.rows; ++row) {
    const size_t offset = row * layout.stride;
    if (rowsDiffer(a + offset, b + offset, layout.rowBytes)) return true;
  }
  return false;
}

}  // namespace tapdeck
