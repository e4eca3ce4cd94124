#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <vector>

#include "Runner/Display/FrameComparison.h"
#include "Tests/Support/Seed.h"

namespace tapdeck {
namespace {

class Random {
 public:
  size_t upTo(size_t most) { return std::uniform_int_distribution<size_t>(0, most)(_engine); }

 private:
  std::mt19937 _engine{testSeed()};
};

/// A copy with differences that count as none within the rows and any whatever in the padding.
std::vector<uint8_t> likeness(const std::vector<uint8_t>& frame, const FrameLayout& layout,
                              Random& random) {
  std::vector<uint8_t> copy = frame;
  const size_t noise = random.upTo(2) * 2;
  for (size_t i = 0; i < frame.size(); ++i) {
    const int shifted =
        frame[i] + static_cast<int>(random.upTo(noise * 2)) - static_cast<int>(noise);
    const bool isPadding = i % layout.stride >= layout.rowBytes;
    if (isPadding)
      copy[i] = static_cast<uint8_t>(random.upTo(255));
    else if (shifted >= 0 && shifted <= 255)
      copy[i] = static_cast<uint8_t>(shifted);
  }
  return copy;
}

TEST(FrameComparisonTest, SeesEveryDifferenceOfMoreThanFour) {
  Random random;
  for (size_t width = 1; width <= 400; ++width) {
    const size_t rowBytes = width * 4;
    const FrameLayout layout{rowBytes, rowBytes + random.upTo(3) * random.upTo(40),
                             1 + random.upTo(3)};
    std::vector<uint8_t> frame(layout.stride * layout.rows);
    for (auto& byte : frame) byte = static_cast<uint8_t>(random.upTo(255));
    std::vector<uint8_t> other = likeness(frame, layout, random);
    ASSERT_FALSE(framesDiffer(frame.data(), other.data(), layout)) << "width " << width;

    const size_t row = random.upTo(layout.rows - 1) * layout.stride;
    for (size_t at = row; at < row + rowBytes; ++at) {
      const uint8_t before = other[at];
      for (const int difference : {0, 4, -4, 5, -5, 128, -255}) {
        const int changed = frame[at] + difference;
        if (changed < 0 || changed > 255) continue;
        other[at] = static_cast<uint8_t>(changed);
        ASSERT_EQ(framesDiffer(frame.data(), other.data(), layout), std::abs(difference) > 4)
            << "width " << width << ", stride " << layout.stride << ", " << difference << " at "
            << at;
      }
      other[at] = before;
    }
  }
}

}  // namespace
}  // namespace tapdeck
