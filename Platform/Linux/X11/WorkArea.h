#pragma once

#include <cstdint>
#include <vector>

#include "Platform/Linux/X11/Connection.h"
#include "Platform/Linux/X11/Monitors.h"

namespace tapdeck::quartz {

/// Pixels of the root window; right and bottom edges outside.
struct Edges {
  int left, top, right, bottom;
  friend bool operator==(const Edges&, const Edges&) = default;
};

/// What a panel keeps for itself along the edges of the root window, in the order of EWMH's
/// _NET_WM_STRUT_PARTIAL.
struct Strut {
  int left, right, top, bottom;
  int leftStartY, leftEndY, rightStartY, rightEndY;
  int topStartX, topEndX, bottomStartX, bottomEndX;
};

/// What the struts leave of the monitor's area. `width` and `height` are the root window's.
Edges withoutStruts(const Monitor& monitor, const std::vector<Strut>& struts, int width,
                    int height);

/// The part of the monitor that panels and the window manager leave free now. Main thread only.
Edges workArea(Connection& connection, const Monitor& monitor, bool isOnlyMonitor);

}  // namespace tapdeck::quartz
