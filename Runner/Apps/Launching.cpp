#include "Runner/Apps/Launching.h"

#include "Platform/Applications.h"

namespace tapdeck {

void launchApplication(const std::string& bundleIdentifier) {
  if (const auto path = platform::pathForApplication(bundleIdentifier)) {
    platform::openApplication(*path);
  }
}

}  // namespace tapdeck
