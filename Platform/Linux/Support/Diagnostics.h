#pragma once

#include <string>

namespace tapdeck {

/// Writes the line "tapdeck: MESSAGE" to standard error: for failures that no caller can be told
/// of. The message says in one sentence, in UTF-8 and without a line break, what is not possible
/// and why. Any thread; lines do not mix.
void warn(const std::string& message);

}  // namespace tapdeck
