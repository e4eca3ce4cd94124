#include "Platform/Images.h"

#import "Platform/macOS/AppKitImages.h"
#import "Platform/macOS/Data.h"
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

std::shared_ptr<const Image> imageFromData(const std::vector<uint8_t>& bytes) {
  NSData* data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
  return imageOf([[NSImage alloc] initWithData:data]);
}

CGSize sizeOf(const Image& image) {
  return image.image.size;
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

void setPointSize(Bitmap& bitmap, CGSize size) {
  bitmap.representation.size = size;
}

void copyOnto(Bitmap& bitmap, const Image& image, CGRect part) {
  NSBitmapImageRep* representation = bitmap.representation;
  [NSGraphicsContext saveGraphicsState];
  NSGraphicsContext.currentContext =
      [NSGraphicsContext graphicsContextWithBitmapImageRep:representation];
  [image.image drawInRect:NSMakeRect(0, 0, representation.size.width, representation.size.height)
                 fromRect:part
                operation:NSCompositingOperationCopy
                 fraction:1.0];
  [NSGraphicsContext restoreGraphicsState];
}

namespace {

std::optional<std::vector<uint8_t>> encoded(const Bitmap& bitmap, NSBitmapImageFileType type,
                                            double compressionFactor) {
  return bytesFromData([bitmap.representation
      representationUsingType:type
                   properties:@{
                     NSImageCompressionFactor : @(compressionFactor)
                   }]);
}

}  // namespace

std::optional<std::vector<uint8_t>> pngOf(const Bitmap& bitmap, double compressionFactor) {
  return encoded(bitmap, NSBitmapImageFileTypePNG, compressionFactor);
}

std::optional<std::vector<uint8_t>> jpegOf(const Bitmap& bitmap, double compressionFactor) {
  return encoded(bitmap, NSBitmapImageFileTypeJPEG, compressionFactor);
}

}  // namespace tapdeck::platform
