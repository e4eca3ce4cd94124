#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tapdeck::platform {

// NSImage and NSBitmapImageRep. Any thread, one object on one thread at a time; what asks for a
// file's icon, and icons themselves, on the main thread only.

/// An image that can be drawn at any size; the platform knows what is in it.
struct Image;

/// Pixels to draw on: 8 bits each of red, green, blue and alpha, interleaved.
struct Bitmap;

/// NSWorkspace iconForFile: the icon of whatever lies at this path; null when there is none.
std::shared_ptr<const Image> iconOfFile(const std::string& path);

/// NSImage initWithData: null when the bytes are no image that can be decoded.
std::shared_ptr<const Image> imageFromData(const std::vector<uint8_t>& bytes);

/// NSImage size, in points.
CGSize sizeOf(const Image& image);

/// A transparent bitmap of this many pixels in the device's RGB; null when it cannot be made.
std::shared_ptr<Bitmap> createBitmap(int64_t width, int64_t height);

/// NSBitmapImageRep size, in points: how large the pixels are taken to be. A new bitmap has as many
/// points as pixels.
void setPointSize(Bitmap& bitmap, CGSize size);

/// Draws the part of the image (in its points, origin at the bottom left; an empty rectangle stands
/// for the whole) over (0, 0, width, height) of the bitmap, in its points, by the copy operation,
/// at opacity 1.0. The current graphics context is the same before and after.
void copyOnto(Bitmap& bitmap, const Image& image, CGRect part);

/// The bitmap as PNG, with NSImageCompressionFactor in its properties; absent when it cannot be
/// encoded.
std::optional<std::vector<uint8_t>> pngOf(const Bitmap& bitmap, double compressionFactor);

/// The bitmap as JPEG, with NSImageCompressionFactor in its properties, 0 to 1; absent when it
/// cannot be encoded.
std::optional<std::vector<uint8_t>> jpegOf(const Bitmap& bitmap, double compressionFactor);

}  // namespace tapdeck::platform
