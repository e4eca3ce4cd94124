#pragma once

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <random>

namespace tapdeck {

/// Where a test's random numbers begin: at TAPDECK_SEED of the environment, else where the test
/// says, else elsewhere in every run. Printed, so that a failure can be repeated.
inline unsigned testSeed(std::optional<unsigned> usual = std::nullopt) {
  const char* given = std::getenv("TAPDECK_SEED");
  const unsigned seed = given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10))
                        : usual          ? *usual
                                         : std::random_device()();
  std::printf("TAPDECK_SEED=%u repeats this run\n", seed);
  return seed;
}

}  // namespace tapdeck
