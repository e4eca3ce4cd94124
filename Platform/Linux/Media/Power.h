#pragma once

#include "Platform/Linux/AppleScript/Terms.h"

namespace tapdeck::applescript {

/// Asks the login manager to sleep, restart or shut down, and returns once it is asked. Somebody
/// may have to type a password first, so the answer is awaited for minutes, on the default main
/// context, and a refusal told on standard error. Throws ScriptError (-600) when there is no login
/// manager. Main thread only.
void requestPower(Command command);

/// Runs the default main context until no request is without an answer, for a process that would
/// end before: the login manager forgets whose asker is gone. Main thread only.
void finishPowerRequests();

}  // namespace tapdeck::applescript
