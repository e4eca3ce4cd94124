#import "Platform/macOS/Data.h"

namespace tapdeck::platform {

std::optional<std::vector<uint8_t>> bytesFromData(NSData* data) {
  if (data == nil) return std::nullopt;
  const auto* bytes = static_cast<const uint8_t*>(data.bytes);
  return std::vector<uint8_t>(bytes, bytes + data.length);
}

}  // namespace tapdeck::platform
