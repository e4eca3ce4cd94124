#include "Platform/Linux/Fronts/PictureDecoding.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <future>
#include <map>
#include <optional>
#include <thread>
#include <utility>

#include "Platform/Linux/Media/MediaError.h"
#include "Platform/Linux/Media/Pictures.h"
#include "Platform/Linux/Support/FileStamp.h"

namespace tapdeck::platform {
namespace {

using glib::Object;
using Pixels = Object<GdkPixbuf>;

constexpr std::chrono::seconds kTimeLimit{1};

bool isScalable(GdkPixbufLoader* loader) {
  GdkPixbufFormat* format = gdk_pixbuf_loader_get_format(loader);
  return format != nullptr && gdk_pixbuf_format_is_scalable(format) != FALSE;
}

/// Chooses the size before the loader makes room for the pixels; `side` is an int, or null.
void chooseSize(GdkPixbufLoader* loader, int width, int height, gpointer side) noexcept {
  constexpr int64_t kMaxPixels = 40'000'000;
  if (side != nullptr && isScalable(loader)) {
    const double scale = double(*static_cast<int*>(side)) / std::max({width, height, 1});
    const auto scaled = [scale](int length) {
      return std::max(static_cast<int>(std::lround(scale * length)), 1);
    };
    gdk_pixbuf_loader_set_size(loader, scaled(width), scaled(height));
  } else if (int64_t{width} * height > kMaxPixels) {
    gdk_pixbuf_loader_set_size(loader, 0, 0);  // an error to it
  }
}

Pixels decode(std::string_view bytes, std::optional<int> side) {
  if (bytes.empty()) return nullptr;
  const Object<GdkPixbufLoader> loader(gdk_pixbuf_loader_new());
  g_signal_connect(loader.get(), "size-prepared", G_CALLBACK(chooseSize), side ? &*side : nullptr);
  const bool isTaken =
      gdk_pixbuf_loader_write(loader.get(), reinterpret_cast<const guchar*>(bytes.data()),
                              bytes.size(), nullptr) != FALSE;
  const bool isWhole = gdk_pixbuf_loader_close(loader.get(), nullptr) != FALSE;
  GdkPixbuf* picture = isTaken && isWhole ? gdk_pixbuf_loader_get_pixbuf(loader.get()) : nullptr;
  return Pixels(picture != nullptr ? GDK_PIXBUF(g_object_ref(picture)) : nullptr);
}

std::optional<std::string> bytesIn(const std::string& path) {
  try {
    return media::readPictureFile(path);
  } catch (const media::MediaError&) {
    return std::nullopt;
  }
}

/// Files that took too long, as they were then.
std::map<std::string, FileStamp>& slowFiles() {
  static std::map<std::string, FileStamp> files;
  return files;
}

}  // namespace

Pixels decodePicture(std::string_view bytes) {
  return decode(bytes, std::nullopt);
}

Pixels decodeIconFile(const std::string& path, int side) {
  const auto stamp = stampOf(path);
  const auto slow = slowFiles().find(path);
  if (!stamp || (slow != slowFiles().end() && slow->second == *stamp)) return nullptr;
  auto bytes = bytesIn(path);
  if (!bytes) return nullptr;
  // nothing can stop a decoder of vectors, so it is waited for on another thread
  std::packaged_task<Pixels()> task(
      [bytes = std::move(*bytes), side] { return decode(bytes, side); });
  auto picture = task.get_future();
  std::thread(std::move(task)).detach();
  if (picture.wait_for(kTimeLimit) == std::future_status::ready) return picture.get();
  slowFiles()[path] = *stamp;
  return nullptr;
}

}  // namespace tapdeck::platform
