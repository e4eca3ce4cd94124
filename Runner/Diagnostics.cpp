#include "Runner/Diagnostics.h"

#include <cstdio>

namespace tapdeck {

void printLine(std::string_view line) {
  // a NUL is a character like any other
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
}

}  // namespace tapdeck
