#pragma once

#include <xcb/xcb.h>

#include <optional>

#include "Platform/Linux/X11/Connection.h"
#include "Platform/Linux/X11/PointSpace.h"

namespace tapdeck::quartz {

// One window of another application, as its window manager keeps it. Main thread only.

bool exists(Connection& connection, xcb_window_t window);

bool isFullScreen(Connection& connection, xcb_window_t window);

/// Asks for full screen, or for its end. Returns when the window manager has done so, or after a
/// fraction of a second.
void setFullScreen(Connection& connection, xcb_window_t window, bool wanted);

/// Moves the top-left corner of what the user sees of the window: its frame, or, where the
/// application draws the frame itself, the window without its shadow. In pixels of the root window.
/// A maximised window is given its own size back first, which may take a fraction of a second.
void moveVisibleCorner(Connection& connection, xcb_window_t window, Pixel corner);

}  // namespace tapdeck::quartz
