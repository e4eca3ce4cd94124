#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <cstdint>
#include <memory>

namespace tapdeck::platform {

/// Components from 0 to 1; in the calibrated RGB space, as NSColor's colorWithCalibratedRed.
struct Colour {
  double red, green, blue, alpha;
};

/// How an NSWindow with one layer-backed view as its content is built and looks. Lengths in points.
struct OverlayStyle {
  CGRect contentRect;
  /// NSWindowStyleMask.
  uint64_t styleMask;
  bool isOpaque;
  Colour background;
  bool hasShadow;
  bool ignoresMouseEvents;
  double alpha;
  int32_t level;
  /// NSWindowCollectionBehavior.
  uint64_t collectionBehaviour;
  Colour layerBackground;
  double cornerRadius;
  Colour layerShadow;
  float shadowOpacity;
  double shadowRadius;
  CGSize shadowOffset;
};

/// An NSWindow, buffered, not deferred, that lies over other applications' windows; hidden until it
/// is ordered in, gone with this object. Frames are as AppKit has them: points, origin at the
/// bottom-left corner of the primary screen. Main thread only.
class OverlayWindow {
 public:
  explicit OverlayWindow(const OverlayStyle& style);
  OverlayWindow(const OverlayWindow&) = delete;
  OverlayWindow& operator=(const OverlayWindow&) = delete;
  ~OverlayWindow();

  CGRect frame() const;
  void setFrameOrigin(CGPoint origin);
  /// Shows it above its like without making the application active.
  void orderFrontRegardless();
  void orderOut();

 private:
  struct Window;
  std::unique_ptr<Window> _window;
};

}  // namespace tapdeck::platform
