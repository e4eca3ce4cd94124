#include "Platform/Linux/X11/WorkArea.h"

#include <algorithm>
#include <cstring>

#include "Platform/Linux/X11/WindowManager.h"

namespace tapdeck::x11 {
namespace {

constexpr size_t kPartialStrutLength = 12;
constexpr size_t kStrutLength = 4;

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
    for (const char* property : {"_NET_WM_STRUT_PARTIAL", "_NET_WM_STRUT"}) {
      const auto strut = strutOf(lengthsOf(connection, window, property));
      if (!strut) continue;
      struts.push_back(*strut);
      break;
    }
  }
  return struts;
}

}  // namespace

std::optional<Strut> strutOf(const std::vector<int>& lengths) {
  if (lengths.size() < kStrutLength) return std::nullopt;
  Strut strut{lengths[0], lengths[1], lengths[2], lengths[3], 0, kMaxLength,
              0,          kMaxLength, 0,          kMaxLength, 0, kMaxLength};
  if (lengths.size() >= kPartialStrutLength) std::memcpy(&strut, lengths.data(), sizeof strut);
  return strut;
}

Edges withoutStruts(const Monitor& monitor, const std::vector<Strut>& struts, RootSize root) {
  const Edges whole = areaOf(monitor);
  Edges area = whole;
  for (const Strut& strut : struts) subtract(strut, whole, root, area);
  return area;
}

// It is one rectangle for all monitors, so it says something only where there is one: margins, and
// panels that have no strut.
Edges withinWorkArea(const Edges& area, const std::vector<int>& lengths) {
  if (lengths.size() < 4) return area;
  return {std::max(area.left, lengths[0]), std::max(area.top, lengths[1]),
          std::min(area.right, lengths[0] + lengths[2]),
          std::min(area.bottom, lengths[1] + lengths[3])};
}

Edges workArea(Connection& connection, const Monitor& monitor, bool isOnlyMonitor) {
  const auto root = connection.wait(xcb_get_geometry(connection.get(), connection.root()),
                                    xcb_get_geometry_reply);
  if (root == nullptr) return areaOf(monitor);
  Edges area = withoutStruts(monitor, currentStruts(connection), {root->width, root->height});
  if (isOnlyMonitor) {
    area = withinWorkArea(area, lengthsOf(connection, connection.root(), "_NET_WORKAREA"));
  }
  const bool isEmpty = area.left >= area.right || area.top >= area.bottom;
  return isEmpty ? areaOf(monitor) : area;
}

}  // namespace tapdeck::x11
