#pragma once

#include <string_view>

namespace tapdeck {

/// True when the bytes are well-formed UTF-8 as RFC 3629 has it: no overlong form, no surrogate,
/// nothing above U+10FFFF. Any thread.
bool isUtf8(std::string_view text);

}  // namespace tapdeck
