#include "Runner/Input/Scrolling.h"

#include <CoreGraphics/CoreGraphics.h>

#include <limits>
#include <string>

#include "Platform/ProcessInfo.h"
#include "Runner/Owned.h"

namespace tapdeck {
namespace {

int32_t checkedWheelValue(int64_t amount, bool forward) {
  constexpr int64_t kLeast = std::numeric_limits<int32_t>::min();
  constexpr int64_t kGreatest = std::numeric_limits<int32_t>::max();
  // compared before it is negated: the least 64-bit integer has no opposite
  const bool fits =
      forward ? amount >= kLeast && amount <= kGreatest : amount >= -kGreatest && amount <= -kLeast;
  if (!fits) {
    platform::stopProcess("scroll amount " + std::string(forward ? "" : "minus ") +
                          std::to_string(amount) + " does not fit a signed 32-bit integer");
  }
  return static_cast<int32_t>(forward ? amount : -amount);
}

}  // namespace

void postScroll(int64_t amount, int64_t direction, ScrollAxis axis) {
  const int32_t value = checkedWheelValue(amount, direction >= 1);
  const Owned<CGEventRef> event(
      axis == ScrollAxis::vertical
          ? CGEventCreateScrollWheelEvent2(nullptr, kCGScrollEventUnitPixel, 1, value, 0, 0)
          : CGEventCreateScrollWheelEvent2(nullptr, kCGScrollEventUnitPixel, 2, 0, value, 0));
  if (event) CGEventPost(kCGHIDEventTap, event.get());
}

}  // namespace tapdeck
