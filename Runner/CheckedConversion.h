#pragma once

#include <cstdint>
#include <string_view>

namespace tapdeck {

/// Whether the value, truncated toward zero, is a signed 64-bit integer; false for NaN.
bool fitsInt64(double value);

/// The value truncated toward zero. A value that is not finite or lies outside the signed 64-bit
/// range stops the process with a message that names `what` and the value.
int64_t truncatedToInt64(double value, std::string_view what);

}  // namespace tapdeck
