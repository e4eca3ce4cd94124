#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

#include "Platform/Linux/Pixels/AreaScaler.h"
#include "Tests/Support/Seed.h"

namespace tapdeck::pixels {
namespace {

using Size = AreaScaler::Size;

PixelBuffer blank(Size size) {
  auto pixels = allocatePixels(size.width, size.height, alignedBytesPerRow(size.width));
  std::memset(pixels.memory.get(), 0, pixels.bytesPerRow * size.height);
  return pixels;
}

/// Noise, which no scaler can guess right.
void scatter(const PixelBuffer& pixels, const Area& area, std::mt19937& random) {
  for (int y = area.y; y < area.y + area.height; ++y) {
    std::generate_n(pixels.at(area.x, y), area.width * 4, [&] { return random() & 0xff; });
  }
}

/// How much of the pixel `i` lies in [start, end).
double covered(int i, double start, double end) {
  return std::min<double>(end, i + 1) - std::max<double>(start, i);
}

double exactMean(const PixelBuffer& source, const PixelBuffer& scaled, int x, int y, int byte) {
  const double across = static_cast<double>(source.width) / scaled.width;
  const double down = static_cast<double>(source.height) / scaled.height;
  double sum = 0;
  for (int j = static_cast<int>(y * down); j < (y + 1) * down - 1e-9; ++j) {
    for (int i = static_cast<int>(x * across); i < (x + 1) * across - 1e-9; ++i) {
      sum += source.at(i, j)[byte] * covered(j, y * down, (y + 1) * down) *
             covered(i, x * across, (x + 1) * across);
    }
  }
  return sum / (across * down);
}

double peakSignalToNoise(const PixelBuffer& source, const PixelBuffer& scaled) {
  double squares = 0;
  for (int y = 0; y < scaled.height; ++y) {
    for (int x = 0; x < scaled.width; ++x) {
      for (int byte = 0; byte < 3; ++byte) {
        squares += std::pow(exactMean(source, scaled, x, y, byte) - scaled.at(x, y)[byte], 2);
      }
    }
  }
  return 10 * std::log10(255 * 255 / (squares / (3.0 * scaled.width * scaled.height)));
}

TEST(AreaScalerTest, AveragesByArea) {
  const std::pair<Size, Size> sizes[] = {
      {{720, 450}, {320, 200}}, {{960, 540}, {320, 180}},  // 2.25 and 3
      {{683, 384}, {320, 180}}, {{641, 401}, {320, 200}}, {{1366, 77}, {1365, 76}},
      {{3840, 120}, {320, 10}}, {{500, 3}, {320, 2}},     {{6401, 700}, {320, 35}},
      {{333, 200}, {333, 100}}, {{100, 60}, {161, 97}},
  };
  std::mt19937 random(testSeed());
  for (const auto& [from, to] : sizes) {
    SCOPED_TRACE(std::to_string(from.width) + " to " + std::to_string(to.width));
    const PixelBuffer source = blank(from);
    const PixelBuffer result = blank(to);
    scatter(source, {0, 0, from.width, from.height}, random);
    AreaScaler scaler(from, to);
    scaler.scale(source.view(), result, {0, 0, to.width, to.height});
    EXPECT_GE(peakSignalToNoise(source, result), 54);
    EXPECT_EQ(result.at(to.width - 1, to.height - 1)[3], 255);
    std::memset(source.memory.get(), 255, source.bytesPerRow * from.height);
    scaler.scale(source.view(), result, {0, 0, to.width, to.height});
    EXPECT_EQ(result.at(to.width - 1, to.height - 1)[0], 255);
  }
}

TEST(AreaScalerTest, ScalesPartsAsTheWhole) {
  std::mt19937 random(testSeed());
  const auto upTo = [&random](int most) { return 1 + static_cast<int>(random() % most); };
  for (int round = 0; round < 500; ++round) {
    const Size from{upTo(400), upTo(200)};
    const Size to{upTo(from.width), upTo(from.height)};
    const Area whole{0, 0, to.width, to.height};
    AreaScaler scaler(from, to);
    const PixelBuffer source = blank(from);
    const PixelBuffer inParts = blank(to);
    const PixelBuffer atOnce = blank(to);
    scatter(source, {0, 0, from.width, from.height}, random);
    scaler.scale(source.view(), inParts, whole);
    const int x = upTo(from.width) - 1;
    const int y = upTo(from.height) - 1;
    const Area dirty{x, y, upTo(from.width - x), upTo(from.height - y)};
    scatter(source, dirty, random);
    scaler.scale(source.view(), inParts, scaler.reach(dirty));
    AreaScaler(from, to).scale(source.view(), atOnce, whole);
    const size_t size = inParts.bytesPerRow * to.height;
    ASSERT_EQ(std::memcmp(inParts.memory.get(), atOnce.memory.get(), size), 0) << "round " << round;
  }
}

}  // namespace
}  // namespace tapdeck::pixels
