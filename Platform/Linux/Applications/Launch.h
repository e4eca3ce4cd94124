#pragma once

#include "Platform/Linux/Applications/DesktopEntries.h"

namespace tapdeck::applications {

/// Starts the program that the entry describes, so that its window comes up in front. Does not wait
/// for it; one that cannot be started is reported on standard error. Main thread only.
void launch(const DesktopEntry& entry);

}  // namespace tapdeck::applications
