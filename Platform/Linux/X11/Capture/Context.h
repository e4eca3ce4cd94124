#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include "Platform/Linux/CoreFoundation/Object.h"
#include "Platform/Linux/Pixels/ScaledCopies.h"

/// What a CGContextRef refers to. Has no pixels of its own as long as it need not: an image that is
/// drawn shares its scaled ones.
struct CGContext final : tapdeck::cf::Object {
  explicit CGContext(const tapdeck::pixels::ScaledCopies::Shape& shape_) : shape(shape_) {}
  const tapdeck::pixels::ScaledCopies::Shape shape;
  tapdeck::pixels::PixelBuffer pixels;
};
