#pragma once

namespace tapdeck {

/// From now on an exception that nothing catches, which cannot pass through the main loop's C code,
/// ends the process with a line on standard error, the exit status 1, and nothing left pressed; by
/// force where that takes longer than two seconds.
void endCleanlyOnFatalError();

}  // namespace tapdeck
