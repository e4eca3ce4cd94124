#pragma once

#include <chrono>

#include "Platform/Queues.h"

namespace tapdeck::platform {

/// Waits until all work given to asyncOnGlobal is done, at most this long. When it returns false,
/// work is still running, and the process must end by _exit so that no static object is destroyed
/// while that work uses it. Main thread, at the process's end.
bool finishGlobalQueues(std::chrono::milliseconds atMost);

}  // namespace tapdeck::platform
