#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tapdeck::platform {

// NSImage and NSBitmapImageRep. Main thread only.

/// An image that can be drawn at any size; the platform knows what is in it.
struct Image;

/// Pixels to draw on: 8 bits each of red, green, blue and alpha, interleaved.
struct Bitmap;

/// NSWorkspace iconForFile: the icon of whatever lies at this path; null when there is none.
std::shared_ptr<const Image> iconOfFile(const std::string& path);

/// A transparent bitmap of this many pixels in the device's RGB; null when it cannot be made.
std::shared_ptr<Bitmap> createBitmap(int64_t width, int64_t height);

/// Draws the whole image over the whole bitmap by the copy operation, at opacity 1.0. The current
/// graphics context is the same before and after.
void copyOnto(Bitmap& bitmap, const Image& image);

/// The bitmap as PNG, with NSImageCompressionFactor in its properties; absent when it cannot be
/// encoded.
std::optional<std::vector<uint8_t>> pngOf(const Bitmap& bitmap, double compressionFactor);

}  // namespace tapdeck::platform
