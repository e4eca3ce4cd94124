#pragma once

#include <cstdint>

namespace tapdeck {

// Main thread only.

/// The output volume, 0 to 100; 50 when the system gives no number. Waits for the interpreter
/// without a limit.
int64_t volumeLevel();

/// One step of 10 up or down, or muted and not in turns. Do not wait.
void volumeUp();
void volumeDown();
void volumeMute();

/// Locks the screen, where a framework that can is loaded into the process; else does nothing.
void lockScreen();

// Ask the system, which asks the applications. Wait until it has accepted.
void sleepSystem();
void shutDownSystem();
void restartSystem();

}  // namespace tapdeck
