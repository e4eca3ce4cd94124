#include "Platform/Linux/Quartz/Ending.h"

#include <atomic>

#include "Platform/Linux/Quartz/WindowServer.h"

namespace tapdeck::quartz {
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

}  // namespace tapdeck::quartz
