#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <cstdint>
#include <optional>

namespace tapdeck::platform {

/// What tells without a look at the pixels that two bitmap contexts of the same size hold the same
/// ones: where their numbers are equal they do, where not they may. Absent where the platform does
/// not know, as on the Mac. Good until something else is drawn. Main thread only.
std::optional<uint64_t> pixelsVersion(CGContextRef context);

}  // namespace tapdeck::platform
