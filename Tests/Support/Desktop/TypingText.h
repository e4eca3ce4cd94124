#pragma once

#include <string>

namespace tapdeck::testing {

/// At least so many characters as people see them, of many scripts: with more different ones than
/// a keyboard's map has room for, and every one of ASCII's.
std::string longText(size_t clusters = 2000);

/// Where and how they differ first, for people.
std::string differenceOf(const std::string& sent, const std::string& received);

}  // namespace tapdeck::testing
