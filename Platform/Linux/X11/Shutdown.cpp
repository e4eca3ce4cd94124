#include "Platform/Linux/X11/Shutdown.h"

#include <atomic>

namespace tapdeck::x11 {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kGracePeriod{300};
constexpr Clock::rep kNotBegun = 0;

std::atomic<Clock::rep> deadline = kNotBegun;

}  // namespace

void beginShutdown() {
  deadline = (Clock::now() + kGracePeriod).time_since_epoch().count();
}

std::optional<Clock::time_point> shutdownDeadline() {
  const Clock::rep time = deadline;
  if (time == kNotBegun) return std::nullopt;
  return Clock::time_point(Clock::duration(time));
}

}  // namespace tapdeck::x11
