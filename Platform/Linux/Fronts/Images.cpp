#include "Platform/Images.h"

#include <gtk/gtk.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "Platform/Linux/Applications/IconImage.h"
#include "Platform/Linux/Fronts/PictureDecoding.h"
#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::platform {

using applications::DesktopEntries;
using glib::Object;

/// An icon or a picture.
struct Image {
  /// Null when the application names none.
  Object<GIcon> icon;
  Object<GdkPixbuf> picture;
};

struct Bitmap {
  Object<GdkPixbuf> pixels;
  bool isDrawn = false;
};

namespace {

Object<GdkPixbuf> loadFile(GFileIcon* icon, int side) {
  const glib::Text path(g_file_get_path(g_file_icon_get_file(icon)));
  return path != nullptr ? decodeIconFile(path.get(), side) : nullptr;
}

/// The icon as the desktop's icon theme has it at this size, made of vectors where it offers them;
/// null when there is none or its file holds no image.
Object<GdkPixbuf> load(GIcon* icon, int side) {
  if (icon == nullptr) return nullptr;
  if (G_IS_FILE_ICON(icon) != FALSE) return loadFile(G_FILE_ICON(icon), side);
  const Object<GtkIconInfo> info(gtk_icon_theme_lookup_by_gicon(gtk_icon_theme_get_default(), icon,
                                                                side, GTK_ICON_LOOKUP_FORCE_SIZE));
  if (info == nullptr) return nullptr;
  const char* path = gtk_icon_info_get_filename(info.get());
  if (path != nullptr) return decodeIconFile(path, side);
  // one of GTK's own, which are no files
  return Object<GdkPixbuf>(gtk_icon_info_load_icon(info.get(), nullptr));
}

Object<GdkPixbuf> loadOrGeneric(GIcon* icon, int side) {
  if (auto pixels = load(icon, side)) return pixels;
  const Object<GIcon> generic(g_themed_icon_new("application-x-executable"));
  return load(generic.get(), side);
}

/// Draws the picture as large as it fits, in the middle.
void drawCentred(const GdkPixbuf* picture, GdkPixbuf* target) {
  const int width = gdk_pixbuf_get_width(target);
  const int height = gdk_pixbuf_get_height(target);
  const double scale = std::min(double(width) / gdk_pixbuf_get_width(picture),
                                double(height) / gdk_pixbuf_get_height(picture));
  const int usedWidth =
      std::clamp(int(std::lround(scale * gdk_pixbuf_get_width(picture))), 1, width);
  const int usedHeight =
      std::clamp(int(std::lround(scale * gdk_pixbuf_get_height(picture))), 1, height);
  const int x = (width - usedWidth) / 2;
  const int y = (height - usedHeight) / 2;
  gdk_pixbuf_scale(picture, target, x, y, usedWidth, usedHeight, x, y, scale, scale,
                   GDK_INTERP_BILINEAR);
}

void drawIcon(GIcon* icon, Bitmap& bitmap) {
  GdkPixbuf* target = bitmap.pixels.get();
  const int side = std::min(gdk_pixbuf_get_width(target), gdk_pixbuf_get_height(target));
  const Object<GdkPixbuf> picture = loadOrGeneric(icon, side);
  if (picture == nullptr) return;
  drawCentred(picture.get(), target);
  bitmap.isDrawn = true;
}

CGRect wholeOf(const GdkPixbuf* picture) {
  return CGRectMake(0, 0, gdk_pixbuf_get_width(picture), gdk_pixbuf_get_height(picture));
}

/// Stretches the part of the picture over the whole bitmap.
void stretch(const GdkPixbuf* picture, CGRect part, Bitmap& bitmap) {
  if (part.size.width <= 0 || part.size.height <= 0) part = wholeOf(picture);
  GdkPixbuf* target = bitmap.pixels.get();
  const int width = gdk_pixbuf_get_width(target);
  const int height = gdk_pixbuf_get_height(target);
  const double xScale = width / part.size.width;
  const double yScale = height / part.size.height;
  // GDK's rows begin at the top
  const double top = gdk_pixbuf_get_height(picture) - part.origin.y - part.size.height;
  gdk_pixbuf_scale(picture, target, 0, 0, width, height, -part.origin.x * xScale, -top * yScale,
                   xScale, yScale, GDK_INTERP_BILINEAR);
  bitmap.isDrawn = true;
}

std::optional<std::vector<uint8_t>> encoded(const Bitmap& bitmap, const char* type,
                                            const char* option, const std::string& value) {
  // nothing at all is no image
  if (!bitmap.isDrawn) return std::nullopt;
  char* bytes = nullptr;
  gsize size = 0;
  if (gdk_pixbuf_save_to_buffer(bitmap.pixels.get(), &bytes, &size, type, nullptr, option,
                                value.c_str(), nullptr) == FALSE) {
    return std::nullopt;
  }
  const glib::Text owner(bytes);
  return std::vector<uint8_t>(bytes, bytes + size);
}

}  // namespace

std::shared_ptr<const Image> iconOf(const applications::DesktopEntry& entry) {
  GIcon* icon = g_app_info_get_icon(G_APP_INFO(entry.info.get()));
  if (icon != nullptr) g_object_ref(icon);
  return std::make_shared<const Image>(Image{Object<GIcon>(icon), nullptr});
}

std::shared_ptr<const Image> iconOfFile(const std::string& path) {
  const auto* entry = DesktopEntries::current().atPath(path);
  return entry != nullptr ? iconOf(*entry) : nullptr;
}

std::shared_ptr<const Image> imageFromData(const std::vector<uint8_t>& bytes) {
  auto picture = decodePicture({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  if (picture == nullptr) return nullptr;
  return std::make_shared<const Image>(Image{nullptr, std::move(picture)});
}

CGSize sizeOf(const Image& image) {
  if (image.picture == nullptr) return {0, 0};
  return wholeOf(image.picture.get()).size;
}

std::shared_ptr<Bitmap> createBitmap(int64_t width, int64_t height) {
  constexpr int bitsPerSample = 8;
  Object<GdkPixbuf> pixels(gdk_pixbuf_new(GDK_COLORSPACE_RGB, TRUE, bitsPerSample,
                                          static_cast<int>(width), static_cast<int>(height)));
  if (pixels == nullptr) return nullptr;
  gdk_pixbuf_fill(pixels.get(), 0);
  return std::make_shared<Bitmap>(Bitmap{std::move(pixels)});
}

void setPointSize(Bitmap&, CGSize) {
  // a pixbuf has pixels only, and nobody here draws in points
}

void copyOnto(Bitmap& bitmap, const Image& image, CGRect part) {
  if (image.picture != nullptr) {
    stretch(image.picture.get(), part, bitmap);
  } else {
    drawIcon(image.icon.get(), bitmap);
  }
}

std::optional<std::vector<uint8_t>> pngOf(const Bitmap& bitmap, double) {
  return encoded(bitmap, "png", nullptr, "");
}

std::optional<std::vector<uint8_t>> jpegOf(const Bitmap& bitmap, double compressionFactor) {
  constexpr double best = 100;
  return encoded(bitmap, "jpeg", "quality", std::to_string(std::lround(best * compressionFactor)));
}

}  // namespace tapdeck::platform
