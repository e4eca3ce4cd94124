#pragma once

#include <cstdint>

namespace tapdeck::platform {

/// NSProcessInfo.systemUptime: seconds that the system has been awake since it started; never goes
/// back. Any thread.
double systemUptime();

/// usleep: blocks the calling thread for at least this long. Any thread.
void sleepMicroseconds(uint32_t microseconds);

}  // namespace tapdeck::platform
