#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "Platform/Linux/Quartz/Images/AreaScaler.h"

namespace tapdeck::quartz {
namespace {

using Size = AreaScaler::Size;

class AreaScalerTest : public ::testing::Test {
 protected:
  AreaScalerTest() { RecordProperty("seed", std::to_string(seed)); }

  int between(int least, int most) {
    return std::uniform_int_distribution<int>(least, most)(random);
  }
  static PixelBuffer blank(Size size) {
    auto pixels = allocatePixels(size.width, size.height, alignedBytesPerRow(size.width));
    std::memset(pixels.memory.get(), 0, pixels.bytesPerRow * size.height);
    return pixels;
  }
  void scatter(const PixelBuffer& pixels, const Area& area) {
    for (int y = area.y; y < area.y + area.height; ++y) {
      for (int i = 0; i < area.width * 4; ++i) {
        pixels.at(area.x, y)[i] = static_cast<uint8_t>(random());
      }
    }
  }
  Area areaIn(Size size) {
    const int x = between(0, size.width - 1);
    const int y = between(0, size.height - 1);
    return {x, y, between(1, size.width - x), between(1, size.height - y)};
  }

  const unsigned seed = std::random_device()();
  std::mt19937 random{seed};
};

/// Gradients, and a band of noise, which no scaler can guess right.
PixelBuffer picture(Size size) {
  auto pixels = allocatePixels(size.width, size.height, alignedBytesPerRow(size.width));
  std::mt19937 random(1);
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      for (int i = 0; i < 4; ++i) {
        const bool isNoise = (x / 3 + y) % 7 < 3;
        const uint32_t value = isNoise ? random() : (i == 1 ? x : y) * 255 / size.width;
        pixels.at(x, y)[i] = static_cast<uint8_t>(value);
      }
    }
  }
  return pixels;
}

/// The part of `from` source pixels that lies in [start, end), for each of them that has one.
template <typename Function>
void forEachUnder(double start, double end, Function function) {
  for (int i = static_cast<int>(start); i < end - 1e-9; ++i) {
    function(i, std::min<double>(end, i + 1) - std::max<double>(start, i));
  }
}

double exactMean(const PixelBuffer& source, Size target, int x, int y, int byte) {
  const double across = static_cast<double>(source.width) / target.width;
  const double down = static_cast<double>(source.height) / target.height;
  double sum = 0;
  forEachUnder(y * down, (y + 1) * down, [&](int sourceY, double height) {
    forEachUnder(x * across, (x + 1) * across, [&](int sourceX, double width) {
      sum += source.at(sourceX, sourceY)[byte] * width * height;
    });
  });
  return sum / (across * down);
}

double peakSignalToNoise(const PixelBuffer& source, const PixelBuffer& scaled) {
  double squares = 0;
  for (int y = 0; y < scaled.height; ++y) {
    for (int x = 0; x < scaled.width; ++x) {
      for (int byte = 0; byte < 3; ++byte) {
        const double mean = exactMean(source, {scaled.width, scaled.height}, x, y, byte);
        squares += std::pow(mean - scaled.at(x, y)[byte], 2);
      }
    }
  }
  const double mean = squares / (3.0 * scaled.width * scaled.height);
  return 10 * std::log10(255 * 255 / mean);
}

TEST_F(AreaScalerTest, AveragesByArea) {
  const std::pair<Size, Size> sizes[] = {
      {{720, 450}, {320, 200}}, {{960, 540}, {320, 180}},  // 2.25 and 3
      {{683, 384}, {320, 180}}, {{641, 401}, {320, 200}}, {{1366, 77}, {1365, 76}},
      {{3840, 120}, {320, 10}}, {{500, 3}, {320, 2}},     {{6401, 700}, {320, 35}},
      {{333, 200}, {333, 100}}, {{100, 60}, {161, 97}},
  };
  for (const auto& [from, to] : sizes) {
    const PixelBuffer source = picture(from);
    const PixelBuffer scaled = blank(to);
    AreaScaler(from, to).scale(source.view(), scaled, {0, 0, to.width, to.height});
    EXPECT_GE(peakSignalToNoise(source, scaled), 54)
        << from.width << "x" << from.height << " to " << to.width << "x" << to.height;
    EXPECT_EQ(scaled.at(to.width - 1, to.height - 1)[3], 255);
  }
}

TEST_F(AreaScalerTest, KeepsPlainColours) {
  for (const int value : {0, 1, 127, 254, 255}) {
    const Size from{517, 311};
    const PixelBuffer source = blank(from);
    std::memset(source.memory.get(), value, source.bytesPerRow * from.height);
    for (const Size to : {Size{320, 192}, Size{7, 5}, Size{517, 1}, Size{5, 311}}) {
      const PixelBuffer scaled = blank(to);
      AreaScaler(from, to).scale(source.view(), scaled, {0, 0, to.width, to.height});
      for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(scaled.at(to.width - 1, to.height / 2)[i], value) << to.width;
      }
    }
  }
}

TEST_F(AreaScalerTest, ScalesPartsAsTheWhole) {
  for (int round = 0; round < 60; ++round) {
    const Size from{between(1, 400), between(1, 200)};
    const Size to{between(1, from.width), between(1, from.height)};
    AreaScaler scaler(from, to);
    const PixelBuffer source = blank(from);
    const PixelBuffer inParts = blank(to);
    const PixelBuffer atOnce = blank(to);
    const Area whole{0, 0, to.width, to.height};
    scatter(source, {0, 0, from.width, from.height});
    scaler.scale(source.view(), inParts, whole);
    for (int change = 0; change < 10; ++change) {
      const Area dirty = areaIn(from);
      scatter(source, dirty);
      scaler.scale(source.view(), inParts, scaler.reach(dirty));
      AreaScaler(from, to).scale(source.view(), atOnce, whole);
      ASSERT_EQ(
          std::memcmp(inParts.memory.get(), atOnce.memory.get(), inParts.bytesPerRow * to.height),
          0)
          << "seed " << seed << ": " << from.width << "x" << from.height << " to " << to.width
          << "x" << to.height << ", dirty " << dirty.x << "," << dirty.y << " " << dirty.width
          << "x" << dirty.height;
    }
  }
}

}  // namespace
}  // namespace tapdeck::quartz
