#include "Platform/MainBundle.h"

namespace tapdeck::platform {

std::string mainBundleIdentifier() {
  return "com.tapdeck.host";
}

}  // namespace tapdeck::platform
