#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tapdeck {

/// The image as JPEG in base64, scaled down so that neither side is above `largestSide` pixels,
/// never up; absent when the bytes are no image. Any thread.
std::optional<std::string> thumbnailBase64(const std::vector<uint8_t>& bytes, int64_t largestSide);

}  // namespace tapdeck
