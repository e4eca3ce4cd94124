#pragma once

#include "Engine/MethodCall.h"
#include "Engine/Reply.h"

namespace tapdeck {

/// Answers the channel "launch_at_startup" for the process's LaunchAtLogin:
/// "launchAtStartupIsEnabled" with a boolean; "launchAtStartupSetEnabled" with null, after setting
/// what its map holds under "setEnabledValue". Arguments that are no map with string keys change
/// nothing; a map without a boolean under that key is the caller's programming error and stops the
/// process. Any other name is told to be not implemented. Main thread only.
void handleLaunchAtStartupCall(const MethodCall& call, Reply reply);

}  // namespace tapdeck
