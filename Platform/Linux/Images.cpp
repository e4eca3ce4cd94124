#include "Platform/Images.h"

#include <gtk/gtk.h>

#include <algorithm>
#include <cmath>

#include "Platform/Linux/Applications/Handles.h"
#include "Platform/Linux/Applications/IconImage.h"

namespace tapdeck::platform {

using applications::DesktopEntries;
using applications::Object;

struct Image {
  /// Null when the application names none.
  Object<GIcon> icon;
};

struct Bitmap {
  Object<GdkPixbuf> pixels;
  bool isDrawn = false;
};

namespace {

/// A device or a pipe could keep its reader waiting for ever.
bool canBeRead(GIcon* icon) {
  if (G_IS_FILE_ICON(icon) == FALSE) return true;
  GFile* file = g_file_icon_get_file(G_FILE_ICON(icon));
  return g_file_query_file_type(file, G_FILE_QUERY_INFO_NONE, nullptr) == G_FILE_TYPE_REGULAR;
}

/// The icon as the desktop's icon theme has it at this size, made of vectors where it offers them;
/// null when there is none or its file holds no image.
Object<GdkPixbuf> load(GIcon* icon, int side) {
  if (icon == nullptr || !canBeRead(icon)) return nullptr;
  const Object<GtkIconInfo> info(gtk_icon_theme_lookup_by_gicon(gtk_icon_theme_get_default(), icon,
                                                                side, GTK_ICON_LOOKUP_FORCE_SIZE));
  if (info == nullptr) return nullptr;
  return Object<GdkPixbuf>(gtk_icon_info_load_icon(info.get(), nullptr));
}

Object<GdkPixbuf> loadOrGeneric(GIcon* icon, int side) {
  if (auto pixels = load(icon, side)) return pixels;
  const Object<GIcon> generic(g_themed_icon_new("application-x-executable"));
  return load(generic.get(), side);
}

/// Draws the picture as large as it fits, in the middle.
void place(const GdkPixbuf* picture, GdkPixbuf* target) {
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

}  // namespace

std::shared_ptr<const Image> iconOf(const applications::DesktopEntry& entry) {
  GIcon* icon = g_app_info_get_icon(G_APP_INFO(entry.info.get()));
  if (icon != nullptr) g_object_ref(icon);
  return std::make_shared<const Image>(Image{Object<GIcon>(icon)});
}

std::shared_ptr<const Image> iconOfFile(const std::string& path) {
  const auto* entry = DesktopEntries::current().atPath(path);
  return entry != nullptr ? iconOf(*entry) : nullptr;
}

std::shared_ptr<Bitmap> createBitmap(int64_t width, int64_t height) {
  constexpr int bitsPerSample = 8;
  Object<GdkPixbuf> pixels(gdk_pixbuf_new(GDK_COLORSPACE_RGB, TRUE, bitsPerSample,
                                          static_cast<int>(width), static_cast<int>(height)));
  if (pixels == nullptr) return nullptr;
  gdk_pixbuf_fill(pixels.get(), 0);
  return std::make_shared<Bitmap>(Bitmap{std::move(pixels)});
}

void copyOnto(Bitmap& bitmap, const Image& image) {
  GdkPixbuf* target = bitmap.pixels.get();
  const int side = std::min(gdk_pixbuf_get_width(target), gdk_pixbuf_get_height(target));
  const Object<GdkPixbuf> picture = loadOrGeneric(image.icon.get(), side);
  if (picture == nullptr) return;
  place(picture.get(), target);
  bitmap.isDrawn = true;
}

std::optional<std::vector<uint8_t>> pngOf(const Bitmap& bitmap, double) {
  // nothing at all is no icon
  if (!bitmap.isDrawn) return std::nullopt;
  char* bytes = nullptr;
  gsize size = 0;
  if (gdk_pixbuf_save_to_buffer(bitmap.pixels.get(), &bytes, &size, "png", nullptr, nullptr) ==
      FALSE) {
    return std::nullopt;
  }
  const std::unique_ptr<char, decltype(&g_free)> owner(bytes, g_free);
  return std::vector<uint8_t>(bytes, bytes + size);
}

}  // namespace tapdeck::platform
