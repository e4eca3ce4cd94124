#include <CoreGraphics/CoreGraphics.h>

#include "Platform/Linux/X11/PointSpace.h"
#include "Platform/Linux/X11/Session/ServerSession.h"

using tapdeck::x11::PointSpace;
using tapdeck::x11::session;

CGDirectDisplayID CGMainDisplayID() {
  const auto monitors = tapdeck::x11::monitors();
  return monitors.empty() ? kCGNullDirectDisplay : monitors.front().number;
}

CGRect CGDisplayBounds(CGDirectDisplayID display) {
  const auto monitors = tapdeck::x11::monitors();
  for (const auto& monitor : monitors) {
    if (monitor.number != display) continue;
    return PointSpace(monitors, tapdeck::x11::pixelsPerPoint()).rectOf(monitor);
  }
  return CGRectMake(0, 0, 0, 0);
}

CGError CGDisplayHideCursor(CGDirectDisplayID) {
  if (session() == nullptr) return kCGErrorFailure;
  session()->cursor.hide();
  return session()->connection.isAlive() ? kCGErrorSuccess : kCGErrorFailure;
}

CGError CGDisplayShowCursor(CGDirectDisplayID) {
  if (session() == nullptr) return kCGErrorFailure;
  session()->cursor.show();
  return session()->connection.isAlive() ? kCGErrorSuccess : kCGErrorFailure;
}

CGError CGWarpMouseCursorPosition(CGPoint position) {
  if (session() == nullptr) return kCGErrorFailure;
  const auto pixel = tapdeck::x11::currentPointSpace().pixelAt(position);
  if (!pixel) return kCGErrorIllegalArgument;
  session()->poster.warp(*pixel);
  return session()->connection.isAlive() ? kCGErrorSuccess : kCGErrorFailure;
}

int32_t CGShieldingWindowLevel() {
  return 1;
}

CGImageRef CGDisplayCreateImage(CGDirectDisplayID display) {
  if (!CGPreflightScreenCaptureAccess()) return nullptr;
  return session()->displayImages.create(display, session()->state.monitors());
}
