#include "Platform/Linux/X11/Ending.h"

#include <atomic>

namespace tapdeck::x11 {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPatience{300};
constexpr Clock::rep kNever = 0;

std::atomic<Clock::rep> end = kNever;

}  // namespace

void beginToEnd() {
  end = (Clock::now() + kPatience).time_since_epoch().count();
}

std::optional<Clock::time_point> endOfPatience() {
  const Clock::rep time = end;
  if (time == kNever) return std::nullopt;
  return Clock::time_point(Clock::duration(time));
}

}  // namespace tapdeck::x11
