#pragma once

#include <cstdint>
#include <vector>

#include "Platform/Linux/X11/Connection.h"
#include "Platform/Linux/X11/Monitors.h"

namespace tapdeck::quartz {

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

/// In pixels.
struct RootSize {
  int width, height;
};

/// What is left of the monitor's area without the struts.
Edges withoutStruts(const Monitor& monitor, const std::vector<Strut>& struts, RootSize root);

/// The part of the monitor that panels and the window manager leave to windows now; the whole
/// monitor when nothing would be left. Main thread only.
Edges workArea(Connection& connection, const Monitor& monitor, bool isOnlyMonitor);

}  // namespace tapdeck::quartz
