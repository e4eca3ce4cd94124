#include <ImageIO/ImageIO.h>

#include <algorithm>
#include <cmath>

#include "Platform/Linux/CoreFoundation/Object.h"
#include "Platform/Linux/Pixels/Jpeg.h"
#include "Platform/Linux/X11/Capture/Image.h"

const CFStringRef kCGImageDestinationLossyCompressionQuality = CFStringCreateWithCString(
    nullptr, "kCGImageDestinationLossyCompressionQuality", kCFStringEncodingUTF8);

struct CGImageDestination final : tapdeck::cf::Object {
  explicit CGImageDestination(CFMutableDataRef target) : data(target) { CFRetain(data); }
  ~CGImageDestination() override {
    if (image != nullptr) CFRelease(image);
    CFRelease(data);
  }
  const CFMutableDataRef data;
  CGImageRef image = nullptr;
  double quality = 0;
};

namespace {

constexpr double kUsualQuality = 0.75;

bool isJpeg(CFStringRef type) {
  static const CFStringRef jpeg =
      CFStringCreateWithCString(nullptr, "public.jpeg", kCFStringEncodingUTF8);
  return type != nullptr && CFEqual(type, jpeg) != 0;
}

double qualityIn(CFDictionaryRef properties) {
  if (properties == nullptr) return kUsualQuality;
  const void* number = CFDictionaryGetValue(properties, kCGImageDestinationLossyCompressionQuality);
  double quality = kUsualQuality;
  if (number != nullptr) {
    CFNumberGetValue(static_cast<CFNumberRef>(number), kCFNumberDoubleType, &quality);
  }
  return quality;
}

/// Of the encoder's scale, which starts at 1.
int encoderQuality(double quality) {
  if (!(quality > 0)) return 1;
  return static_cast<int>(std::lround(std::clamp(quality * 100, 1.0, 100.0)));
}

}  // namespace

CGImageDestinationRef CGImageDestinationCreateWithData(CFMutableDataRef data, CFStringRef type,
                                                       size_t count, CFDictionaryRef) {
  if (data == nullptr || !isJpeg(type) || count != 1) return nullptr;
  return new CGImageDestination(data);
}

void CGImageDestinationAddImage(CGImageDestinationRef destination, CGImageRef image,
                                CFDictionaryRef properties) {
  if (destination == nullptr || image == nullptr || destination->image != nullptr) return;
  CFRetain(image);
  destination->image = image;
  destination->quality = qualityIn(properties);
}

bool CGImageDestinationFinalize(CGImageDestinationRef destination) {
  if (destination == nullptr || destination->image == nullptr) return false;
  static tapdeck::pixels::JpegEncoder encoder;
  const auto file =
      encoder.encode(destination->image->pixels.view(), encoderQuality(destination->quality));
  CFDataAppendBytes(destination->data, file.data(), static_cast<CFIndex>(file.size()));
  return !file.empty();
}
