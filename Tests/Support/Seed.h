#pragma once

#include <cstdio>
#include <cstdlib>
#include <random>

namespace tapdeck {

/// Where a test's random numbers begin: at TAPDECK_SEED of the environment, else elsewhere in every
/// run. Printed, so that a failure can be repeated.
inline unsigned testSeed() {
  const char* given = std::getenv("TAPDECK_SEED");
  const unsigned seed = given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10))
                                         : std::random_device()();
  std::printf("TAPDECK_SEED=%u repeats this run\n", seed);
  return seed;
}

}  // namespace tapdeck
