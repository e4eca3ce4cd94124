#pragma once

#include <optional>
#include <vector>

#include "Platform/Linux/X11/Connection.h"
#include "Platform/Linux/X11/Monitors.h"

namespace tapdeck::x11 {

/// A rectangle by its edges, in pixels of the root window; the right and bottom edges are the first
/// ones outside.
struct Edges {
  int left, top, right, bottom;
  friend bool operator==(const Edges&, const Edges&) = default;
};

/// The space that a panel reserves along the edges of the root window, in pixels and in the order
/// of EWMH's _NET_WM_STRUT_PARTIAL: how deep along each edge, then from where to where along it,
/// both ends inside.
struct Strut {
  int left, right, top, bottom;
  int leftStartY, leftEndY, rightStartY, rightEndY;
  int topStartX, topEndX, bottomStartX, bottomEndX;
};

/// The strut that a property gives: _NET_WM_STRUT_PARTIAL's twelve lengths, or the first four alone
/// (_NET_WM_STRUT), which hold along the whole edge; absent where there are fewer. Any thread.
std::optional<Strut> strutOf(const std::vector<int>& lengths);

/// In pixels.
struct RootSize {
  int width, height;
};

/// What is left of the monitor's area without the struts.
Edges withoutStruts(const Monitor& monitor, const std::vector<Strut>& struts, RootSize root);

/// What _NET_WORKAREA, of which these are the lengths, leaves of the area. Any thread.
Edges withinWorkArea(const Edges& area, const std::vector<int>& lengths);

/// The part of the monitor that panels and the window manager leave to windows now; the whole
/// monitor when nothing would be left. Main thread only.
Edges workArea(Connection& connection, const Monitor& monitor, bool isOnlyMonitor);

}  // namespace tapdeck::x11
