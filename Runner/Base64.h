#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace tapdeck {

/// The bytes in base64 (RFC 4648, section 4), padded, without line breaks. Any thread.
std::string base64(std::span<const uint8_t> bytes);

}  // namespace tapdeck
