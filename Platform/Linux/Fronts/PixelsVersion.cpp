#include "Platform/PixelsVersion.h"

#include "Platform/Linux/X11/Capture/Context.h"

namespace tapdeck::platform {

std::optional<uint64_t> pixelsVersion(CGContextRef context) {
  if (context == nullptr || context->pixels.version == 0) return std::nullopt;
  return context->pixels.version;
}

}  // namespace tapdeck::platform
