#pragma once

#include <xcb/xcb.h>

#include <optional>

#include "Platform/Linux/X11/Connection.h"
#include "Platform/Linux/X11/PointSpace.h"

namespace tapdeck::x11 {

// A window of another application, controlled through the window manager (EWMH). Main thread only.

bool exists(Connection& connection, xcb_window_t window);

bool isFullScreen(Connection& connection, xcb_window_t window);

/// Has the window manager make the window fill the screen, or end that. Returns when it has done
/// so, or after half a second.
void setFullScreen(Connection& connection, xcb_window_t window, bool wanted);

/// Moves the top-left corner of what the user sees of the window, in pixels of the root window: of
/// its frame or, where the application draws the frame itself, of the window without its shadow.
/// A window that is maximised is restored first, for which this waits half a second at the most.
void moveVisibleCorner(Connection& connection, xcb_window_t window, Pixel corner);

}  // namespace tapdeck::x11
