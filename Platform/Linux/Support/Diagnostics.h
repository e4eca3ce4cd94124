#pragma once

#include <string>

namespace tapdeck {

/// Tells whoever reads this process's standard error of something that went wrong and that nobody
/// is waiting for the outcome of: the line "tapdeck: MESSAGE". The message says in one sentence
/// what is not possible and why, UTF-8, without a line break. Any thread; lines do not mix.
void warn(const std::string& message);

}  // namespace tapdeck
