#include "Platform/Linux/X11/WorkArea.h"

#include <algorithm>
#include <cstring>

#include "Platform/Linux/X11/WindowManager.h"

namespace tapdeck::quartz {
namespace {

constexpr size_t kStrutLength = 12;
constexpr size_t kOldStrutLength = 4;
constexpr int kFarthest = 0x7fff;

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
    auto numbers = numbersOf(connection, window, "_NET_WM_STRUT_PARTIAL", XCB_ATOM_CARDINAL);
    if (numbers.size() < kStrutLength) {
      numbers = numbersOf(connection, window, "_NET_WM_STRUT", XCB_ATOM_CARDINAL);
      if (numbers.size() < kOldStrutLength) continue;
      numbers.resize(kOldStrutLength);
      for (int edge = 0; edge < 4; ++edge) numbers.insert(numbers.end(), {0, kFarthest});
    }
    Strut strut{};
    std::memcpy(&strut, numbers.data(), sizeof strut);
    struts.push_back(strut);
  }
  return struts;
}

/// EWMH's work area is one rectangle for all monitors, so it says something only where there is
/// one: margins, and panels that have no strut.
void applyDesktopWorkArea(Connection& connection, Edges& area) {
  const auto numbers = numbersOf(connection, connection.root(), "_NET_WORKAREA", XCB_ATOM_CARDINAL);
  if (numbers.size() < 4) return;
  const auto at = [&](size_t index) { return static_cast<int>(numbers[index]); };
  area.left = std::max(area.left, at(0));
  area.top = std::max(area.top, at(1));
  area.right = std::min(area.right, at(0) + at(2));
  area.bottom = std::min(area.bottom, at(1) + at(3));
}

}  // namespace

Edges withoutStruts(const Monitor& monitor, const std::vector<Strut>& struts, int width,
                    int height) {
  const Edges whole = areaOf(monitor);
  Edges left = whole;
  for (const Strut& strut : struts) apply(strut, whole, width, height, left);
  return left;
}

Edges workArea(Connection& connection, const Monitor& monitor, bool isOnlyMonitor) {
  const auto root = connection.wait(xcb_get_geometry(connection.get(), connection.root()),
                                    xcb_get_geometry_reply);
  if (root == nullptr) return areaOf(monitor);
  Edges area = withoutStruts(monitor, currentStruts(connection), root->width, root->height);
  if (isOnlyMonitor) applyDesktopWorkArea(connection, area);
  const bool isEmpty = area.left >= area.right || area.top >= area.bottom;
  return isEmpty ? areaOf(monitor) : area;
}

}  // namespace tapdeck::quartz
