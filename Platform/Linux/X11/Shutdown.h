#pragma once

#include <chrono>
#include <optional>

namespace tapdeck::x11 {

/// Announces that the process is about to end: from now on no keyboard event can be created, so
/// that text that is being typed stops at its next character, and what is still queued is dropped.
/// Any thread.
void beginShutdown();

/// When every wait has to end; absent until beginShutdown() is called. Any thread.
std::optional<std::chrono::steady_clock::time_point> shutdownDeadline();

}  // namespace tapdeck::x11
