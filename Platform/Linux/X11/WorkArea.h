#pragma once

#include <optional>
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

/// The strut that a property gives: _NET_WM_STRUT_PARTIAL's twelve lengths, or the first four alone
/// (_NET_WM_STRUT), which hold along the whole edge; absent where there are fewer. Any thread.
std::optional<Strut> strutOf(const std::vector<int>& lengths);

/// What the struts leave of the monitor's area. `width` and `height` are the root window's.
Edges withoutStruts(const Monitor& monitor, const std::vector<Strut>& struts, int width,
                    int height);

/// What _NET_WORKAREA, of which these are the lengths, leaves of the area. Any thread.
Edges withinWorkArea(const Edges& area, const std::vector<int>& lengths);

/// The part of the monitor that panels and the window manager leave free now. Main thread only.
Edges workArea(Connection& connection, const Monitor& monitor, bool isOnlyMonitor);

}  // namespace tapdeck::quartz
