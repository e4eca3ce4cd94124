#include "Platform/Linux/Support/Diagnostics.h"

#include <cstdio>

namespace tapdeck {

void warn(const std::string& message) {
  std::fprintf(stderr, "tapdeck: %s\n", message.c_str());
}

}  // namespace tapdeck
