#pragma once

#include "Engine/Value.h"

namespace tapdeck {

/// The applications that the UI engine offers to start, each a map of "bundleId", "name" and
/// "isRunning": those running, those kept in the Dock, those in the application folders. Each
/// identifier stands once, as the first of these has it; sorted by name in code-point order. Read
/// afresh. Main thread only.
Value::List applicationCatalogue();

}  // namespace tapdeck
