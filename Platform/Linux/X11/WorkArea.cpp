#include "Platform/Linux/X11/WorkArea.h"

#include <algorithm>
#include <cstring>

#include "Platform/Linux/X11/WindowManager.h"

namespace tapdeck::quartz {
namespace {

constexpr size_t kStrutLength = 12;
constexpr size_t kOldStrutLength = 4;

Edges areaOf(const Monitor& monitor) {
  return {monitor.x, monitor.y, monitor.x + monitor.width, monitor.y + monitor.height};
}

/// Whether a strut that runs from `start` to `end` lies beside the span from `low` to `high`.
bool meets(int start, int end, int low, int high) {
  return start < high && end >= low;
}

/// A strut's inner edge counts for the monitor that it lies on, not for those that it passes by.
bool isWithin(int edge, int low, int high) {
  return edge > low && edge < high;
}

void apply(const Strut& strut, const Edges& whole, int width, int height, Edges& left) {
  const auto horizontally = [&](int start, int end, int edge) {
    return meets(start, end, whole.top, whole.bottom) && isWithin(edge, whole.left, whole.right);
  };
  const auto vertically = [&](int start, int end, int edge) {
    return meets(start, end, whole.left, whole.right) && isWithin(edge, whole.top, whole.bottom);
  };
  const int right = width - strut.right;
  const int bottom = height - strut.bottom;
  if (horizontally(strut.leftStartY, strut.leftEndY, strut.left)) {
    left.left = std::max(left.left, strut.left);
  }
  if (horizontally(strut.rightStartY, strut.rightEndY, right)) {
    left.right = std::min(left.right, right);
  }
  if (vertically(strut.topStartX, strut.topEndX, strut.top)) {
    left.top = std::max(left.top, strut.top);
  }
  if (vertically(strut.bottomStartX, strut.bottomEndX, bottom)) {
    left.bottom = std::min(left.bottom, bottom);
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
  if (lengths.size() < kOldStrutLength) return std::nullopt;
  Strut strut{lengths[0], lengths[1], lengths[2], lengths[3], 0, kMaxLength,
              0,          kMaxLength, 0,          kMaxLength, 0, kMaxLength};
  if (lengths.size() >= kStrutLength) std::memcpy(&strut, lengths.data(), sizeof strut);
  return strut;
}

Edges withoutStruts(const Monitor& monitor, const std::vector<Strut>& struts, int width,
                    int height) {
  const Edges whole = areaOf(monitor);
  Edges left = whole;
  for (const Strut& strut : struts) apply(strut, whole, width, height, left);
  return left;
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
  Edges area = withoutStruts(monitor, currentStruts(connection), root->width, root->height);
  if (isOnlyMonitor) {
    area = withinWorkArea(area, lengthsOf(connection, connection.root(), "_NET_WORKAREA"));
  }
  const bool isEmpty = area.left >= area.right || area.top >= area.bottom;
  return isEmpty ? areaOf(monitor) : area;
}

}  // namespace tapdeck::quartz
