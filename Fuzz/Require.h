#pragma once

#include <cstdio>
#include <cstdlib>

namespace tapdeck {

/// Ends the run, so that the input is kept.
inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "not so: %s\n", what);
  std::abort();
}

}  // namespace tapdeck
