#pragma once

#include "Platform/Pasteboard.h"

namespace tapdeck::platform {

/// Hands the pasteboard's text to the desktop's clipboard manager, if there is one, so that it
/// outlives the process. Waits for the manager, at most GTK's ten seconds, running the main loop
/// meanwhile. Main thread, at the process's end.
void storePasteboard();

}  // namespace tapdeck::platform
