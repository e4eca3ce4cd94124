#include "Platform/Clock.h"

#include <cerrno>
#include <ctime>

namespace tapdeck::platform {

namespace {

constexpr long kNanosecondsPerSecond = 1'000'000'000;

timespec now() {
  // Linux's CLOCK_MONOTONIC stands still while the system sleeps, as the Mac's uptime does.
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return time;
}

}  // namespace

double systemUptime() {
  const timespec time = now();
  return static_cast<double>(time.tv_sec) +
         static_cast<double>(time.tv_nsec) / kNanosecondsPerSecond;
}

void sleepMicroseconds(uint32_t microseconds) {
  timespec end = now();
  end.tv_sec += microseconds / 1'000'000;
  end.tv_nsec += static_cast<long>(microseconds % 1'000'000) * 1000;
  if (end.tv_nsec >= kNanosecondsPerSecond) {
    end.tv_nsec -= kNanosecondsPerSecond;
    ++end.tv_sec;
  }
  // An absolute end, so that signals neither shorten nor lengthen the sleep.
  while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr) == EINTR) {
  }
}

}  // namespace tapdeck::platform
