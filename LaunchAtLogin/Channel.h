#pragma once

#include "Engine/MethodCall.h"
#include "Engine/Reply.h"

namespace tapdeck {

/// Answers the channel "launch_at_startup". This build has no login item yet, so that every method
/// is told to be not implemented. Main thread only.
void handleLaunchAtStartupCall(const MethodCall& call, Reply reply);

}  // namespace tapdeck
