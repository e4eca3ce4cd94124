#pragma once

namespace tapdeck::media {

enum class PowerAction { sleep, restart, shutDown };

/// Asks the login manager for the action, and returns once the request is sent. Somebody may have
/// to type a password first, so its reply is awaited for minutes, on the default main context, and
/// a refusal reported on standard error. Throws MediaError (notRunning) when there is no login
/// manager. Main thread only.
void requestPower(PowerAction action);

/// Runs the default main context until every request has its reply, for a process that would end
/// before: the login manager drops a request whose sender has gone. Main thread only.
void finishPowerRequests();

}  // namespace tapdeck::media
