#include "Benchmarks/Measuring.h"

#include <stdexcept>

namespace tapdeck::benchmarks {

double processorMilliseconds(pid_t process) {
  clockid_t clock = 0;
  timespec used{};
  if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &used) != 0) {
    throw std::runtime_error("a process's time cannot be read");
  }
  return static_cast<double>(used.tv_sec) * 1e3 + static_cast<double>(used.tv_nsec) / 1e6;
}

}  // namespace tapdeck::benchmarks
