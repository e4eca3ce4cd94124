#pragma once

#include <chrono>

#include "Platform/Queues.h"

namespace tapdeck::platform {

/// Waits until all work given to asyncOnGlobal is done, at most this long. When it answers false,
/// work still runs and the process must end by _exit, so that nothing is torn down under it. Main
/// thread, at the process's end.
bool finishGlobalQueues(std::chrono::milliseconds atMost);

}  // namespace tapdeck::platform
