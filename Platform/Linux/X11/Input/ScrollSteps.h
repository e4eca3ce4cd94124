#pragma once

#include <cstdint>

namespace tapdeck::x11 {

/// Turns an amount of scrolling into turns of a wheel, on one axis: X has no finer wheel that other
/// programs may turn. What is left of a step counts towards the next, until the direction turns.
class ScrollSteps {
 public:
  /// Most applications scroll three lines of text, about 50 points, for one wheel step.
  static constexpr int kPixelsPerStep = 50;
  /// The most for one event, however large.
  static constexpr int kMaxSteps = 100;

  /// Points, positive and negative being the two directions; gives whole steps of the same sign.
  int addPixels(int32_t pixels);

 private:
  int64_t _left = 0;
};

}  // namespace tapdeck::x11
