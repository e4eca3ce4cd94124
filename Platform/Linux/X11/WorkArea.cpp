#include "Platform/Linux/X11/WorkArea.h"

#include <algorithm>
#include <cstring>

#include "Platform/Linux/X11/WindowManager.h"

namespace tapdeck::quartz {
namespace {

constexpr size_t kPartialStrutLength = 12;
constexpr size_t kStrutLength = 4;
/// The largest coordinate that the protocol has.
constexpr int kMaxCoordinate = 0x7fff;

Edges areaOf(const Monitor& monitor) {
  return {monitor.x, monitor.y, monitor.x + monitor.width, monitor.y + monitor.height};
}

/// Whether a strut from `start` to `end`, both inside, runs along any part of the span from `low`
/// to `high`, `high` outside.
bool overlaps(int start, int end, int low, int high) {
  return start < high && end >= low;
}

bool isBetween(int edge, int low, int high) {
  return edge > low && edge < high;
}

/// Moves the edges of `area` inwards to leave out the strut. A strut counts only for the monitor
/// that its inner edge lies on: one that is kept along the edge of the root window for a panel on
/// a further monitor runs over those in between.
void subtract(const Strut& strut, const Edges& monitor, const RootSize& root, Edges& area) {
  const auto cutsColumns = [&](int start, int end, int edge) {
    return overlaps(start, end, monitor.top, monitor.bottom) &&
           isBetween(edge, monitor.left, monitor.right);
  };
  const auto cutsRows = [&](int start, int end, int edge) {
    return overlaps(start, end, monitor.left, monitor.right) &&
           isBetween(edge, monitor.top, monitor.bottom);
  };
  const int rightEdge = root.width - strut.right;
  const int bottomEdge = root.height - strut.bottom;
  if (cutsColumns(strut.leftStartY, strut.leftEndY, strut.left)) {
    area.left = std::max(area.left, strut.left);
  }
  if (cutsColumns(strut.rightStartY, strut.rightEndY, rightEdge)) {
    area.right = std::min(area.right, rightEdge);
  }
  if (cutsRows(strut.topStartX, strut.topEndX, strut.top)) {
    area.top = std::max(area.top, strut.top);
  }
  if (cutsRows(strut.bottomStartX, strut.bottomEndX, bottomEdge)) {
    area.bottom = std::min(area.bottom, bottomEdge);
  }
}

std::vector<Strut> currentStruts(Connection& connection) {
  std::vector<Strut> struts;
  for (const xcb_window_t window : managedClients(connection)) {
    auto numbers = numbersOf(connection, window, "_NET_WM_STRUT_PARTIAL", XCB_ATOM_CARDINAL);
    if (numbers.size() < kPartialStrutLength) {
      // the older property, whose struts run along the whole edge
      numbers = numbersOf(connection, window, "_NET_WM_STRUT", XCB_ATOM_CARDINAL);
      if (numbers.size() < kStrutLength) continue;
      numbers.resize(kStrutLength);
      for (int edge = 0; edge < 4; ++edge) numbers.insert(numbers.end(), {0, kMaxCoordinate});
    }
    Strut strut{};
    std::memcpy(&strut, numbers.data(), sizeof strut);
    struts.push_back(strut);
  }
  return struts;
}

/// Leaves out what EWMH's _NET_WORKAREA does: margins, and panels without a strut. It is one
/// rectangle for all monitors together, so that it is of use only where there is one monitor.
void intersectWithDesktopWorkArea(Connection& connection, Edges& area) {
  const auto numbers = numbersOf(connection, connection.root(), "_NET_WORKAREA", XCB_ATOM_CARDINAL);
  if (numbers.size() < 4) return;
  const auto at = [&](size_t index) { return static_cast<int>(numbers[index]); };
  area.left = std::max(area.left, at(0));
  area.top = std::max(area.top, at(1));
  area.right = std::min(area.right, at(0) + at(2));
  area.bottom = std::min(area.bottom, at(1) + at(3));
}

}  // namespace

Edges withoutStruts(const Monitor& monitor, const std::vector<Strut>& struts, RootSize root) {
  const Edges whole = areaOf(monitor);
  Edges area = whole;
  for (const Strut& strut : struts) subtract(strut, whole, root, area);
  return area;
}

Edges workArea(Connection& connection, const Monitor& monitor, bool isOnlyMonitor) {
  const auto root = connection.wait(xcb_get_geometry(connection.get(), connection.root()),
                                    xcb_get_geometry_reply);
  if (root == nullptr) return areaOf(monitor);
  Edges area = withoutStruts(monitor, currentStruts(connection), {root->width, root->height});
  if (isOnlyMonitor) intersectWithDesktopWorkArea(connection, area);
  const bool isEmpty = area.left >= area.right || area.top >= area.bottom;
  return isEmpty ? areaOf(monitor) : area;
}

}  // namespace tapdeck::quartz
