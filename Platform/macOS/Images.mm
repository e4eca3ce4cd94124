#include "Platform/Images.h"

#import "Platform/macOS/AppKitImages.h"
#import "Platform/macOS/Strings.h"

namespace tapdeck::platform {

struct Bitmap {
  NSBitmapImageRep* representation;
};

std::shared_ptr<const Image> imageOf(NSImage* image) {
  if (image == nil) return nullptr;
  return std::make_shared<const Image>(Image{static_cast<NSImage* _Nonnull>(image)});
}

std::shared_ptr<const Image> iconOfFile(const std::string& path) {
  NSString* place = stringFromUtf8(path);
  if (place == nil) return nullptr;
  return imageOf([NSWorkspace.sharedWorkspace iconForFile:place]);
}

std::shared_ptr<Bitmap> createBitmap(int64_t width, int64_t height) {
  // the system lays the rows out: 0 bytes per row and 0 bits per pixel ask it to
  NSBitmapImageRep* representation =
      [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                              pixelsWide:width
                                              pixelsHigh:height
                                           bitsPerSample:8
                                         samplesPerPixel:4
                                                hasAlpha:YES
                                                isPlanar:NO
                                          colorSpaceName:NSDeviceRGBColorSpace
                                             bytesPerRow:0
                                            bitsPerPixel:0];
  if (representation == nil) return nullptr;
  return std::make_shared<Bitmap>(Bitmap{representation});
}

void copyOnto(Bitmap& bitmap, const Image& image) {
  NSBitmapImageRep* representation = bitmap.representation;
  [NSGraphicsContext saveGraphicsState];
  NSGraphicsContext.currentContext =
      [NSGraphicsContext graphicsContextWithBitmapImageRep:representation];
  // an empty source rectangle stands for the whole image
  [image.image drawInRect:NSMakeRect(0, 0, representation.pixelsWide, representation.pixelsHigh)
                 fromRect:NSZeroRect
                operation:NSCompositingOperationCopy
                 fraction:1.0];
  [NSGraphicsContext restoreGraphicsState];
}

std::optional<std::vector<uint8_t>> pngOf(const Bitmap& bitmap, double compressionFactor) {
  NSData* data =
      [bitmap.representation representationUsingType:NSBitmapImageFileTypePNG
                                          properties:@{
                                            NSImageCompressionFactor : @(compressionFactor)
                                          }];
  if (data == nil) return std::nullopt;
  const auto* bytes = static_cast<const uint8_t*>(data.bytes);
  return std::vector<uint8_t>(bytes, bytes + data.length);
}

}  // namespace tapdeck::platform
