#include "LaunchAtLogin/Channel.h"

namespace tapdeck {

void handleLaunchAtStartupCall(const MethodCall&, Reply reply) {
  reply.notImplemented();
}

}  // namespace tapdeck
