#pragma once

#include <CoreGraphics/CoreGraphics.h>
#include <glib.h>

#include <memory>
#include <vector>

#include "Platform/Linux/Pixels/DirtyTiles.h"
#include "Platform/Linux/X11/Capture/Damage.h"
#include "Platform/Linux/X11/Capture/Image.h"
#include "Platform/Linux/X11/Capture/ScreenGrab.h"
#include "Platform/Linux/X11/Connection.h"
#include "Platform/Linux/X11/Monitors.h"

namespace tapdeck::x11 {

/// The displays' pictures. The last one of each is kept, and for the next one only the parts that
/// were painted since are grabbed. When no picture was taken for ten seconds, all memory is given
/// back and the server stops tracking damage. Main thread; GLib's default main context.
class DisplayImages {
 public:
  explicit DisplayImages(Connection& connection) : _connection(connection) {}
  ~DisplayImages();
  DisplayImages(const DisplayImages&) = delete;
  DisplayImages& operator=(const DisplayImages&) = delete;

  /// What the display, one of `monitors`, shows; the very image of last time when that is still the
  /// same. The reference is the caller's. Null when the display is not there or cannot be grabbed.
  CGImageRef create(CGDirectDisplayID display, const std::vector<Monitor>& monitors);
  /// Gives all memory back.
  void forget();

 private:
  struct Release {
    void operator()(CGImageRef image) const { CFRelease(image); }
  };
  struct CachedImage {
    explicit CachedImage(const Monitor& shown) : monitor(shown), dirty(shown.width, shown.height) {}
    pixels::Area area() const { return {monitor.x, monitor.y, monitor.width, monitor.height}; }
    Monitor monitor;
    std::unique_ptr<CGImage, Release> image;
    /// The parts of the monitor that have been painted since `image` was grabbed.
    pixels::DirtyTiles dirty;
  };

  void start();
  void dropMissing(const std::vector<Monitor>& monitors);
  void takeDamage();
  CachedImage& cacheFor(const Monitor& monitor);
  bool update(CachedImage& cached);
  bool refresh(CachedImage& cached);
  bool grab(CachedImage& cached);
  static gboolean onTick(gpointer self) noexcept;

  Connection& _connection;
  std::unique_ptr<ScreenGrab> _grab;
  std::unique_ptr<Damage> _damage;
  std::vector<CachedImage> _cache;
  guint _tick = 0;
  /// Whether a picture was taken since the last tick.
  bool _isInUse = false;
};

}  // namespace tapdeck::x11
