#pragma once

// The part of Image I/O that the host uses: one image, written as JPEG.

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

extern "C" {

using CGImageDestinationRef = struct CGImageDestination*;

/// The key of an image's properties whose number, 0 to 1, trades quality (1) for size (0).
extern const CFStringRef kCGImageDestinationLossyCompressionQuality;

/// Writes into `data`, which it retains. Null unless `type` is "public.jpeg" and `count` 1.
CGImageDestinationRef CGImageDestinationCreateWithData(CFMutableDataRef data, CFStringRef type,
                                                       size_t count, CFDictionaryRef options);
void CGImageDestinationAddImage(CGImageDestinationRef destination, CGImageRef image,
                                CFDictionaryRef properties);
/// Encodes what was added; false when that fails or nothing was added.
bool CGImageDestinationFinalize(CGImageDestinationRef destination);

}  // extern "C"
