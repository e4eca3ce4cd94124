#pragma once

#include <chrono>
#include <optional>

namespace tapdeck::quartz {

/// When what is still under way must be over, once beginToEnd() was called. Any thread.
std::optional<std::chrono::steady_clock::time_point> endOfPatience();

}  // namespace tapdeck::quartz
