// Display images, bitmap contexts and the encoder, recorded.

#include <ImageIO/ImageIO.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "Platform/PixelsVersion.h"
#include "Tests/Support/Recording/Objects.h"
#include "Tests/Support/Recording/Recording.h"

using tapdeck::recording::contentOf;
using tapdeck::recording::makeObject;
using tapdeck::recording::record;
using tapdeck::recording::ScreenImages;

namespace {

constexpr size_t kBytesPerPixel = 4;

struct ImageRecord {
  CGDirectDisplayID display;
  size_t width;
  size_t height;
};

struct ContextRecord {
  size_t width;
  size_t height;
  size_t stride;
};

struct DestinationRecord {
  CFMutableDataRef data;
};

ScreenImages& images() {
  return tapdeck::recording::script().images;
}

bool fails(const char* function) {
  return images().failing == function;
}

std::string size(size_t width, size_t height) {
  return std::to_string(width) + "x" + std::to_string(height);
}

uint8_t* pixelsOf(CGContextRef context) {
  const UInt8* bytes = CFDataGetBytePtr(reinterpret_cast<CFDataRef>(context));
  return const_cast<uint8_t*>(bytes) + sizeof(ContextRecord);
}

}  // namespace

CGImageRef CGDisplayCreateImage(CGDirectDisplayID display) {
  record("image of display " + std::to_string(display));
  const auto found = images().displays.find(display);
  if (found == images().displays.end()) return nullptr;
  return makeObject<CGImageRef>(ImageRecord{display, found->second.width, found->second.height});
}

size_t CGImageGetWidth(CGImageRef image) {
  return contentOf<ImageRecord>(image).width;
}

size_t CGImageGetHeight(CGImageRef image) {
  return contentOf<ImageRecord>(image).height;
}

CGColorSpaceRef CGColorSpaceCreateDeviceRGB() {
  return makeObject<CGColorSpaceRef>('R');
}

CGContextRef CGBitmapContextCreate(void*, size_t width, size_t height, size_t bitsPerComponent,
                                   size_t bytesPerRow, CGColorSpaceRef, uint32_t bitmapInfo) {
  char format[64];
  std::snprintf(format, sizeof format, " of %zu bits, row %zu, format 0x%x", bitsPerComponent,
                bytesPerRow, bitmapInfo);
  record("context " + size(width, height) + format);
  if (fails("CGBitmapContextCreate")) return nullptr;
  const size_t stride = width * kBytesPerPixel + images().rowPadding;
  return makeObject<CGContextRef>(ContextRecord{width, height, stride}, stride * height);
}

std::optional<uint64_t> tapdeck::platform::pixelsVersion(CGContextRef) {
  return images().version;
}

void* CGBitmapContextGetData(CGContextRef context) {
  return fails("CGBitmapContextGetData") ? nullptr : pixelsOf(context);
}

size_t CGBitmapContextGetBytesPerRow(CGContextRef context) {
  return contentOf<ContextRecord>(context).stride;
}

CGImageRef CGBitmapContextCreateImage(CGContextRef context) {
  record("image of context");
  if (fails("CGBitmapContextCreateImage")) return nullptr;
  const auto content = contentOf<ContextRecord>(context);
  return makeObject<CGImageRef>(ImageRecord{0, content.width, content.height});
}

void CGContextSetInterpolationQuality(CGContextRef, CGInterpolationQuality quality) {
  record("interpolation " + std::to_string(quality));
}

void CGContextDrawImage(CGContextRef context, CGRect rect, CGImageRef image) {
  record("draw into " + tapdeck::recording::describe(rect.origin) + " " +
         size(static_cast<size_t>(rect.size.width), static_cast<size_t>(rect.size.height)));
  static uint8_t padding = 0;
  padding = static_cast<uint8_t>(padding + 100);
  const auto content = contentOf<ContextRecord>(context);
  const auto& drawn = images().displays.at(contentOf<ImageRecord>(image).display).drawn;
  const size_t rowBytes = content.width * kBytesPerPixel;
  for (size_t row = 0; row < content.height; ++row) {
    uint8_t* out = pixelsOf(context) + row * content.stride;
    const size_t start = std::min(row * rowBytes, drawn.size());
    std::copy_n(drawn.begin() + static_cast<ptrdiff_t>(start),
                std::min(rowBytes, drawn.size() - start), out);
    std::memset(out + rowBytes, padding, content.stride - rowBytes);
  }
}

CGImageDestinationRef CGImageDestinationCreateWithData(CFMutableDataRef data, CFStringRef type,
                                                       size_t count, CFDictionaryRef) {
  CFStringRef jpeg = CFStringCreateWithCString(nullptr, "public.jpeg", kCFStringEncodingUTF8);
  record((CFEqual(type, jpeg) != 0 ? "JPEG of " : "something else of ") + std::to_string(count));
  CFRelease(jpeg);
  if (fails("CGImageDestinationCreateWithData")) return nullptr;
  return makeObject<CGImageDestinationRef>(DestinationRecord{data});
}

void CGImageDestinationAddImage(CGImageDestinationRef, CGImageRef image,
                                CFDictionaryRef properties) {
  double quality = -1;
  const auto* number = static_cast<CFNumberRef>(
      CFDictionaryGetValue(properties, kCGImageDestinationLossyCompressionQuality));
  CFNumberGetValue(number, kCFNumberDoubleType, &quality);
  char text[32];
  std::snprintf(text, sizeof text, " at quality %g", quality);
  const auto content = contentOf<ImageRecord>(image);
  record("add " + size(content.width, content.height) + text);
}

bool CGImageDestinationFinalize(CGImageDestinationRef destination) {
  record("finalise");
  if (fails("CGImageDestinationFinalize")) return false;
  CFMutableDataRef data = contentOf<DestinationRecord>(destination).data;
  CFDataAppendBytes(data, images().jpeg.data(), static_cast<CFIndex>(images().jpeg.size()));
  images().encoded = CFDataGetBytePtr(data);
  return true;
}
