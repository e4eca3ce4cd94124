#include <CoreGraphics/CoreGraphics.h>

#include <cstring>

#include "Platform/Linux/CoreFoundation/Object.h"
#include "Platform/Linux/X11/Capture/Context.h"
#include "Platform/Linux/X11/Capture/Image.h"

using tapdeck::pixels::PixelBuffer;

struct CGColorSpace final : tapdeck::cf::Object {};

namespace {

/// All zero before anything is drawn.
const PixelBuffer& pixelsOf(CGContext& context) {
  if (!context.pixels) {
    const auto& [width, height, bytesPerRow] = context.shape;
    context.pixels = tapdeck::pixels::allocatePixels(width, height, bytesPerRow);
    if (context.pixels) {
      std::memset(context.pixels.memory.get(), 0, bytesPerRow * static_cast<size_t>(height));
    }
  }
  return context.pixels;
}

}  // namespace

size_t CGImageGetWidth(CGImageRef image) {
  return image != nullptr ? static_cast<size_t>(image->pixels.width) : 0;
}

size_t CGImageGetHeight(CGImageRef image) {
  return image != nullptr ? static_cast<size_t>(image->pixels.height) : 0;
}

CGColorSpaceRef CGColorSpaceCreateDeviceRGB() {
  return new CGColorSpace;
}

CGContextRef CGBitmapContextCreate(void* data, size_t width, size_t height, size_t bitsPerComponent,
                                   size_t bytesPerRow, CGColorSpaceRef space, uint32_t bitmapInfo) {
  const uint32_t offered = uint32_t{kCGBitmapByteOrder32Little} | kCGImageAlphaNoneSkipFirst;
  if (data != nullptr || bitsPerComponent != 8 || space == nullptr || bitmapInfo != offered) {
    return nullptr;
  }
  if (!tapdeck::pixels::fits(width, height, bytesPerRow != 0 ? bytesPerRow : width * 4)) {
    return nullptr;
  }
  const int columns = static_cast<int>(width);
  if (bytesPerRow == 0) bytesPerRow = tapdeck::pixels::alignedBytesPerRow(columns);
  return new CGContext({columns, static_cast<int>(height), bytesPerRow});
}

void* CGBitmapContextGetData(CGContextRef context) {
  return context != nullptr ? pixelsOf(*context).memory.get() : nullptr;
}

size_t CGBitmapContextGetBytesPerRow(CGContextRef context) {
  return context != nullptr ? context->shape.bytesPerRow : 0;
}

CGImageRef CGBitmapContextCreateImage(CGContextRef context) {
  if (context == nullptr || !pixelsOf(*context)) return nullptr;
  return new CGImage(context->pixels);
}

// There is but one quality: to average all that a pixel covers is as cheap here as anything less.
void CGContextSetInterpolationQuality(CGContextRef, CGInterpolationQuality) {}

void CGContextDrawImage(CGContextRef context, CGRect, CGImageRef image) {
  if (context == nullptr || image == nullptr) return;
  // so that the copy that this context itself still shares need not be kept as it was
  context->pixels = {};
  context->pixels = image->copies.in(context->shape, image->pixels.view());
}
