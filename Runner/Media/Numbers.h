#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tapdeck {

// Numbers as text, whatever the user's locale. Any thread.

/// The fewest digits that read back as the same number: "42.5", and "10.0" for what is whole. With
/// an exponent ("1e+16", "5e-05") above 2 to the 53rd and below 0.0001; "inf", "-inf", "nan".
std::string descriptionOf(double value);

/// The decimal floating-point number that the whole text is, such as "-12.5" or "1.5e+3"; absent
/// when it is none or too large for a double.
std::optional<double> decimalNumber(std::string_view text);

/// The decimal integer that the whole text is, with or without a sign; absent when it is none or no
/// signed 64-bit integer.
std::optional<int64_t> decimalInteger(std::string_view text);

}  // namespace tapdeck
