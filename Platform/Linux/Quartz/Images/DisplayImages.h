#pragma once

#include <CoreGraphics/CoreGraphics.h>
#include <glib.h>

#include <memory>
#include <vector>

#include "Platform/Linux/Quartz/Connection.h"
#include "Platform/Linux/Quartz/Images/Damage.h"
#include "Platform/Linux/Quartz/Images/DirtyTiles.h"
#include "Platform/Linux/Quartz/Images/Image.h"
#include "Platform/Linux/Quartz/Images/ScreenGrab.h"
#include "Platform/Linux/Quartz/WindowServer.h"

namespace tapdeck::quartz {

/// The displays' pictures. The last one of each is kept, and of the next one only what was painted
/// meanwhile is grabbed. All memory goes, and the server stops watching what is painted, when
/// nobody has asked for a while. Main thread; GLib's default main context.
class DisplayImages {
 public:
  explicit DisplayImages(Connection& connection) : _connection(connection) {}
  ~DisplayImages();
  DisplayImages(const DisplayImages&) = delete;
  DisplayImages& operator=(const DisplayImages&) = delete;

  /// What the display shows; the very image of last time when that is still the same. The
  /// reference is the caller's. Null when the display is not there or cannot be grabbed.
  CGImageRef create(CGDirectDisplayID display);
  /// Keeps nothing.
  void forget();

 private:
  struct Release {
    void operator()(CGImageRef image) const { CFRelease(image); }
  };
  struct Known {
    explicit Known(const Monitor& its) : monitor(its), dirty(its.width, its.height) {}
    Area area() const { return {monitor.x, monitor.y, monitor.width, monitor.height}; }
    Monitor monitor;
    std::unique_ptr<CGImage, Release> image;
    /// What of the monitor was painted after `image`.
    DirtyTiles dirty;
  };

  void start();
  void forgetWhatIsGone(const std::vector<Monitor>& monitors);
  void takeDamage();
  Known& known(const Monitor& monitor);
  bool bringUpToDate(Known& known);
  bool refresh(Known& known);
  bool grab(Known& known);
  static gboolean onTick(gpointer self) noexcept;

  Connection& _connection;
  std::unique_ptr<ScreenGrab> _grab;
  std::unique_ptr<Damage> _damage;
  std::vector<Known> _known;
  guint _tick = 0;
  bool _wasAsked = false;
};

}  // namespace tapdeck::quartz
