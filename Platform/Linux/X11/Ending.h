#pragma once

#include <chrono>
#include <optional>

namespace tapdeck::x11 {

/// The process is about to end: from now on no keyboard event can be made, so that text that is
/// being typed stops at its next character, and letting go drops what waits to be typed. Any
/// thread.
void beginToEnd();

/// When what is still under way must be over, once beginToEnd() was called. Any thread.
std::optional<std::chrono::steady_clock::time_point> endOfPatience();

}  // namespace tapdeck::x11
