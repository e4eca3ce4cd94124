#pragma once

#include <string_view>

namespace tapdeck {

/// Writes the line and a line feed to standard output, at once. Any thread.
void printLine(std::string_view line);

}  // namespace tapdeck
