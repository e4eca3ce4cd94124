#include "Runner/Display/ScreenCapture.h"

#include <CoreGraphics/CoreGraphics.h>
#include <ImageIO/ImageIO.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <utility>

#include "Platform/PixelsVersion.h"
#include "Runner/Display/DisplayGeometry.h"
#include "Runner/Display/FrameComparison.h"
#include "Runner/Owned.h"

namespace tapdeck {
namespace {

constexpr size_t kBytesPerPixel = 4;
constexpr uint32_t kPixelFormat = static_cast<uint32_t>(kCGBitmapByteOrder32Little) |
                                  static_cast<uint32_t>(kCGImageAlphaNoneSkipFirst);
constexpr std::align_val_t kFrameAlignment{64};

/// A display's picture at the size at which it is sent.
struct Frame {
  Owned<CGContextRef> context;
  const uint8_t* pixels;
  size_t width;
  size_t height;
  size_t stride;
  std::optional<uint64_t> version;

  size_t bytes() const { return stride * height; }
  FrameLayout layout() const { return {width * kBytesPerPixel, stride, height}; }
};

ValueMap failure(const char* code) {
  return ValueMap{{"error", Value(code)}};
}

Owned<CGImageRef> imageOf(CGDirectDisplayID display) {
#pragma GCC diagnostic push
// what replaces it answers later, and is not there on macOS 11
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
  return Owned(CGDisplayCreateImage(display));
#pragma GCC diagnostic pop
}

struct Size {
  size_t width;
  size_t height;
};

/// Frames are never scaled up.
Size sizeToSend(const Size& source, int64_t maxWidth) {
  const auto width = static_cast<size_t>(std::clamp<int64_t>(maxWidth, 320, 1920));
  if (width >= source.width) return source;
  const double height = static_cast<double>(source.height) * static_cast<double>(width) /
                        static_cast<double>(source.width);
  return {width, std::max<size_t>(static_cast<size_t>(std::round(height)), 1)};
}

std::optional<Frame> drawn(CGImageRef image, const Size& size) {
  const Owned<CGColorSpaceRef> colours(CGColorSpaceCreateDeviceRGB());
  Owned<CGContextRef> context(
      CGBitmapContextCreate(nullptr, size.width, size.height, 8, 0, colours.get(), kPixelFormat));
  if (!context) return std::nullopt;
  CGContextSetInterpolationQuality(context.get(), kCGInterpolationLow);
  const CGRect whole =
      CGRectMake(0, 0, static_cast<CGFloat>(size.width), static_cast<CGFloat>(size.height));
  CGContextDrawImage(context.get(), whole, image);
  // asked for once they are drawn: a context may make its memory only then
  const auto* pixels = static_cast<const uint8_t*>(CGBitmapContextGetData(context.get()));
  if (pixels == nullptr) return std::nullopt;
  const size_t stride = CGBitmapContextGetBytesPerRow(context.get());
  const auto version = platform::pixelsVersion(context.get());
  return Frame{std::move(context), pixels, size.width, size.height, stride, version};
}

std::optional<Frame> frameOf(CGDirectDisplayID display, int64_t maxWidth) {
  const Owned<CGImageRef> image = imageOf(display);
  if (!image) return std::nullopt;
  const Size source{CGImageGetWidth(image.get()), CGImageGetHeight(image.get())};
  if (source.width < 1 || source.height < 1) return std::nullopt;
  return drawn(image.get(), sizeToSend(source, maxWidth));
}

bool hasGeometryOfLast(const MainFlutterWindow& window, const Frame& frame) {
  return window._prevFrame != nullptr && std::cmp_equal(window._prevFrameBytes, frame.bytes()) &&
         std::cmp_equal(window._prevFrameStride, frame.stride) &&
         std::cmp_equal(window._prevFrameHeight, frame.height);
}

bool isLikeLast(MainFlutterWindow& window, const Frame& frame) {
  if (!hasGeometryOfLast(window, frame)) return false;
  if (frame.version && frame.version == window._prevFrameVersion) return true;
  if (framesDiffer(frame.pixels, window._prevFrame, frame.layout())) return false;
  window._prevFrameVersion = frame.version;
  return true;
}

/// False, with nothing kept, when there is no memory for the frame.
bool keepAsLast(MainFlutterWindow& window, const Frame& frame) {
  if (!hasGeometryOfLast(window, frame)) {
    resetScreenCapture(window);
    window._prevFrame =
        static_cast<uint8_t*>(::operator new(frame.bytes(), kFrameAlignment, std::nothrow));
    if (window._prevFrame == nullptr) return false;
    window._prevFrameBytes = static_cast<int64_t>(frame.bytes());
    window._prevFrameStride = static_cast<int64_t>(frame.stride);
    window._prevFrameHeight = static_cast<int64_t>(frame.height);
  }
  // by rows: all in one goes past the caches, where the next comparison would find it
  for (size_t at = 0; at < frame.bytes(); at += frame.stride) {
    std::memcpy(window._prevFrame + at, frame.pixels + at, frame.stride);
  }
  window._prevFrameVersion = frame.version;
  return true;
}

Owned<CFDictionaryRef> propertiesFor(int64_t quality) {
  const double factor = static_cast<double>(std::clamp<int64_t>(quality, 20, 95)) / 100.0;
  const Owned<CFNumberRef> number(CFNumberCreate(nullptr, kCFNumberDoubleType, &factor));
  const void* keys[] = {kCGImageDestinationLossyCompressionQuality};
  const void* values[] = {number.get()};
  return Owned(CFDictionaryCreate(nullptr, keys, values, 1, &kCFTypeDictionaryKeyCallBacks,
                                  &kCFTypeDictionaryValueCallBacks));
}

/// In the memory of the data object that the encoder filled. Empty when the encoder fails.
Value::Bytes jpegOf(CGImageRef image, int64_t quality) {
  Owned<CFMutableDataRef> data(CFDataCreateMutable(nullptr, 0));
  const Owned<CFStringRef> type(
      CFStringCreateWithCString(nullptr, "public.jpeg", kCFStringEncodingUTF8));
  const Owned<CGImageDestinationRef> destination(
      CGImageDestinationCreateWithData(data.get(), type.get(), 1, nullptr));
  if (!destination) return {};
  const Owned<CFDictionaryRef> properties = propertiesFor(quality);
  CGImageDestinationAddImage(destination.get(), image, properties.get());
  if (!CGImageDestinationFinalize(destination.get())) return {};
  const std::span bytes(CFDataGetBytePtr(data.get()),
                        static_cast<size_t>(CFDataGetLength(data.get())));
  return {std::make_shared<const Owned<CFMutableDataRef>>(std::move(data)), bytes};
}

}  // namespace

ValueMap captureScreen(MainFlutterWindow& window, const CaptureRequest& request) {
  const std::optional<CGDirectDisplayID> display = resolveDisplayId(request.display);
  if (!display) return failure("no_display");
  const std::optional<Frame> frame = frameOf(*display, request.maxWidth);
  if (!frame) return failure("capture_failed");
  if (!request.force && isLikeLast(window, *frame)) return ValueMap{{"unchanged", Value(true)}};
  // before it is encoded: a frame that fails there counts as sent
  if (!keepAsLast(window, *frame)) return failure("capture_failed");
  const Owned<CGImageRef> image(CGBitmapContextCreateImage(frame->context.get()));
  if (!image) return failure("capture_failed");
  const Value::Bytes jpeg = jpegOf(image.get(), request.quality);
  if (jpeg.empty()) return failure("encode_failed");
  return ValueMap{{"jpeg", Value(jpeg)},
                  {"w", Value(static_cast<int64_t>(frame->width))},
                  {"h", Value(static_cast<int64_t>(frame->height))}};
}

void resetScreenCapture(MainFlutterWindow& window) {
  ::operator delete(window._prevFrame, kFrameAlignment);
  window._prevFrame = nullptr;
  window._prevFrameBytes = 0;
  window._prevFrameStride = 0;
  window._prevFrameHeight = 0;
  window._prevFrameVersion.reset();
}

}  // namespace tapdeck
