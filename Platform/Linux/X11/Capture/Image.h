#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <utility>

#include "Platform/Linux/CoreFoundation/Object.h"
#include "Platform/Linux/Pixels/Pixels.h"
#include "Platform/Linux/Pixels/ScaledCopies.h"

/// A picture. It never changes while anybody but DisplayImages holds it.
struct CGImage final : tapdeck::cf::Object {
  explicit CGImage(tapdeck::pixels::PixelBuffer content) : pixels(std::move(content)) {}
  tapdeck::pixels::PixelBuffer pixels;
  tapdeck::pixels::ScaledCopies copies;
};
