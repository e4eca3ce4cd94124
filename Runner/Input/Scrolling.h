#pragma once

#include <cstdint>

namespace tapdeck {

enum class ScrollAxis { vertical, horizontal };

/// Posts one scroll-wheel event of `amount` pixels, negated when `direction` is 0 or less; positive
/// scrolls towards the top or the left edge. Needs no Accessibility trust. Stops the process when
/// the value posted does not fit a signed 32-bit integer. Main thread only.
void postScroll(int64_t amount, int64_t direction, ScrollAxis axis);

}  // namespace tapdeck
