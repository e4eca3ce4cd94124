#pragma once

namespace tapdeck::platform {

/// Releases all that noteKey and noteButton know as pressed, the last pressed first, keys without
/// modifiers and buttons at the pointer. For a process that is about to end. Any thread.
void letGoOfInput();

}  // namespace tapdeck::platform
