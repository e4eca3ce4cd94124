#pragma once

#include <string>
#include <string_view>

namespace tapdeck {

/// A User-Agent header as people say it: "Safari on iPhone", "Firefox on Linux"; the program's own
/// name when it is no browser, "Unknown program" when there is none.
std::string browserName(std::string_view userAgent);

}  // namespace tapdeck
