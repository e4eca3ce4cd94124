#include "Runner/Permissions/Sandbox.h"

#include "Platform/ProcessInfo.h"

namespace tapdeck {

bool isOutsideSandbox() {
  return !platform::environmentVariable("APP_SANDBOX_CONTAINER_ID").has_value();
}

}  // namespace tapdeck
