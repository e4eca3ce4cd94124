#pragma once

#include <glib.h>

#include <chrono>
#include <functional>

namespace tapdeck {

/// Runs the default main context until the condition holds; false when it does not in time.
inline bool eventually(const std::function<bool()>& holds,
                       std::chrono::seconds atMost = std::chrono::seconds(30)) {
  const auto deadline = std::chrono::steady_clock::now() + atMost;
  while (!holds()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    if (g_main_context_iteration(nullptr, FALSE) == FALSE) g_usleep(1000);
  }
  return true;
}

/// Runs the default main context for so long.
inline void runFor(std::chrono::milliseconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  eventually([end] { return std::chrono::steady_clock::now() > end; });
}

}  // namespace tapdeck
