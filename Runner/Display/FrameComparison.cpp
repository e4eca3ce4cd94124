#include "Runner/Display/FrameComparison.h"

#include <cstring>

namespace tapdeck {
namespace {

constexpr uint8_t kTolerance = 4;
// small enough to stay in the nearest cache for a second look and to stop soon after a difference
constexpr size_t kBlockBytes = 256;

// Compilers turn both loops into vector instructions, whatever the processor has of them. That of
// equality is as fast as memory gives the bytes, so that only blocks which are not equal, of which
// a screen has few, pay for the other.

bool isSameBlock(const uint8_t* a, const uint8_t* b) {
  uint64_t difference = 0;
  for (size_t i = 0; i < kBlockBytes; i += sizeof difference) {
    uint64_t wordOfA = 0;
    uint64_t wordOfB = 0;
    std::memcpy(&wordOfA, a + i, sizeof wordOfA);
    std::memcpy(&wordOfB, b + i, sizeof wordOfB);
    difference |= wordOfA ^ wordOfB;
  }
  return difference == 0;
}

bool differsIn(size_t bytes, const uint8_t* a, const uint8_t* b) {
  uint8_t largest = 0;
  for (size_t i = 0; i < bytes; ++i) {
    const uint8_t difference = a[i] > b[i] ? a[i] - b[i] : b[i] - a[i];
    largest = largest > difference ? largest : difference;
  }
  return largest > kTolerance;
}

bool blocksDiffer(const uint8_t* a, const uint8_t* b) {
  return !isSameBlock(a, b) && differsIn(kBlockBytes, a, b);
}

bool rowsDiffer(const uint8_t* a, const uint8_t* b, size_t bytes) {
  if (bytes < kBlockBytes) return differsIn(bytes, a, b);
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
