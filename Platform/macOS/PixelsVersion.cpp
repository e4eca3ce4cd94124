#include "Platform/PixelsVersion.h"

namespace tapdeck::platform {

std::optional<uint64_t> pixelsVersion(CGContextRef) {
  return std::nullopt;
}

}  // namespace tapdeck::platform
