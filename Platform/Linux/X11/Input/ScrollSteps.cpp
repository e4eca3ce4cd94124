#include "Platform/Linux/X11/Input/ScrollSteps.h"

#include <algorithm>

namespace tapdeck::x11 {

int ScrollSteps::addPixels(int32_t pixels) {
  const bool turned = (pixels > 0 && _left < 0) || (pixels < 0 && _left > 0);
  const int64_t total = pixels + (turned ? 0 : _left);
  _left = total % kPixelsPerStep;
  return static_cast<int>(std::clamp<int64_t>(total / kPixelsPerStep, -kMaxSteps, kMaxSteps));
}

}  // namespace tapdeck::x11
