#include "Runner/Diagnostics.h"

#include <cstdio>

namespace tapdeck {

void printLine(std::string_view line) {
  std::printf("%.*s\n", static_cast<int>(line.size()), line.data());
  std::fflush(stdout);
}

}  // namespace tapdeck
