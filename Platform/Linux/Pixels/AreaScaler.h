#pragma once

#include <cstdint>
#include <vector>

#include "Platform/Linux/Pixels/Pixels.h"

namespace tapdeck::pixels {

/// Scales pictures of one size to another: each target pixel is the mean of the part of the source
/// that it covers, weighted by area, so that every source pixel counts and small text stays
/// legible. Meant for scaling down; pictures that are scaled up have hard edges.
class AreaScaler {
 public:
  struct Size {
    int width, height;
    friend bool operator==(const Size&, const Size&) = default;
  };
  AreaScaler(Size source, Size target);

  /// The part of the target that depends on a part of the source.
  Area reach(const Area& source) const;
  /// Brings one part of the target up to date. It comes out the same, byte for byte, whether it is
  /// scaled by itself or with the whole. The unused byte becomes 255.
  void scale(const PixelView& source, const PixelBuffer& target, const Area& part);

 private:
  /// Which source pixels one axis of a target pixel covers, and how much of each.
  struct Axis {
    Axis(int source, int target, uint32_t wholeWeight, int multiple);
    const uint16_t* weightsOf(int target) const { return weights.data() + size_t(target) * taps; }

    int sourceLength, targetLength;
    /// The number of source pixels for each target pixel: the most that any needs; the weights of
    /// those that one does not need are 0.
    int taps = 0;
    std::vector<int> first;
    std::vector<uint16_t> weights;
  };
  int firstReached(const Axis& axis, int source) const;
  int endReached(const Axis& axis, int sourceEnd) const;
  void blendRows(const PixelView& source, int targetRow, int fromColumn, int toColumn);

  Axis _columns;
  Axis _rows;
  /// The column weights, once for each byte of a pixel but the unused one.
  std::vector<uint16_t> _byteWeights;
  /// One target row before its columns are taken together: 8 bits and 8 bits of fraction.
  std::vector<uint16_t> _blended;
};

}  // namespace tapdeck::pixels
