#include "Platform/ProcessInfo.h"

#include <cstdio>
#include <cstdlib>

#include "Platform/Linux/X11/Session/WindowServer.h"

namespace tapdeck::platform {

std::optional<std::string> environmentVariable(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  if (value == nullptr) return std::nullopt;
  return std::string(value);
}

void stopProcess(const std::string& message) {
  std::fprintf(stderr, "❌ %s\n", message.c_str());
  x11::releaseEverything();
  std::abort();
}

}  // namespace tapdeck::platform
