// Images and bitmaps, recorded by their names.

#include "Platform/Images.h"

#include <utility>

#include "Tests/Support/Recording/Recording.h"

namespace tapdeck::platform {

using recording::describe;
using recording::record;
using recording::script;

struct Image {
  std::string name;
};

struct Bitmap {
  std::string name;
};

namespace {

std::shared_ptr<const Image> icon(std::string name) {
  if (script().applications.iconFails) return nullptr;
  return std::make_shared<const Image>(Image{std::move(name)});
}

}  // namespace

std::shared_ptr<const Image> iconOf(const RunningApplication& application) {
  if (script().applications.runningIconFails) return nullptr;
  return icon("icon of process " + std::to_string(application.processIdentifier));
}

std::shared_ptr<const Image> iconOfFile(const std::string& path) {
  return icon("icon of " + path);
}

std::shared_ptr<const Image> imageFromData(const std::vector<uint8_t>& bytes) {
  if (!script().media.imageSize) return nullptr;
  return std::make_shared<const Image>(
      Image{"image of " + std::to_string(bytes.size()) + " bytes"});
}

CGSize sizeOf(const Image&) {
  return script().media.imageSize.value_or(CGSize{0, 0});
}

std::shared_ptr<Bitmap> createBitmap(int64_t width, int64_t height) {
  if (script().applications.bitmapFails) return nullptr;
  return std::make_shared<Bitmap>(
      Bitmap{std::to_string(width) + "x" + std::to_string(height) + " bitmap"});
}

void setPointSize(Bitmap& bitmap, CGSize size) {
  record(bitmap.name + " is " + describe({size.width, size.height}) + " points");
}

void copyOnto(Bitmap& bitmap, const Image& image, CGRect part) {
  const bool isWhole = part.size.width == 0 && part.size.height == 0;
  const std::string of = isWhole ? ""
                                 : describe({part.size.width, part.size.height}) + " at " +
                                       describe(part.origin) + " of ";
  record("copy " + of + image.name + " onto " + bitmap.name);
}

std::optional<std::vector<uint8_t>> pngOf(const Bitmap& bitmap, double compressionFactor) {
  record("PNG of " + bitmap.name + " compressed by " + std::to_string(compressionFactor));
  return script().applications.png;
}

std::optional<std::vector<uint8_t>> jpegOf(const Bitmap& bitmap, double compressionFactor) {
  record("JPEG of " + bitmap.name + " compressed by " + std::to_string(compressionFactor));
  return script().media.jpeg;
}

}  // namespace tapdeck::platform
