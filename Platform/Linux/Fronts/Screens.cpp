#include "Platform/Screens.h"

#include <algorithm>

#include "Platform/Linux/X11/PointSpace.h"
#include "Platform/Linux/X11/Session/ServerSession.h"
#include "Platform/Linux/X11/Session/WindowServer.h"
#include "Platform/Linux/X11/WindowManager.h"
#include "Platform/Linux/X11/WorkArea.h"

namespace tapdeck::platform {
namespace {

using x11::Connection;
using x11::Monitor;

struct Position {
  int x, y;
};

/// In pixels of the root window.
std::optional<Position> centreOfActiveWindow(Connection& connection) {
  const xcb_window_t window = x11::activeWindow(connection);
  if (window == XCB_WINDOW_NONE) return std::nullopt;
  const auto geometry =
      connection.wait(xcb_get_geometry(connection.get(), window), xcb_get_geometry_reply);
  if (geometry == nullptr) return std::nullopt;
  const auto centre =
      connection.wait(xcb_translate_coordinates(connection.get(), window, connection.root(),
                                                static_cast<int16_t>(geometry->width / 2),
                                                static_cast<int16_t>(geometry->height / 2)),
                      xcb_translate_coordinates_reply);
  if (centre == nullptr) return std::nullopt;
  return Position{centre->dst_x, centre->dst_y};
}

bool contains(const Monitor& monitor, Position position) {
  return position.x >= monitor.x && position.x < monitor.x + monitor.width &&
         position.y >= monitor.y && position.y < monitor.y + monitor.height;
}

std::vector<Screen> screensOf(const std::vector<Monitor>& monitors) {
  if (monitors.empty()) return {};
  const double scale = x11::pixelsPerPoint();
  const x11::PointSpace space(monitors, scale);
  const CGFloat primaryHeight = CGRectGetHeight(space.rectOf(monitors.front()));
  std::vector<Screen> screens;
  for (const Monitor& monitor : monitors) {
    CGRect frame = space.rectOf(monitor);
    frame.origin.y = primaryHeight - CGRectGetMaxY(frame);
    screens.push_back({monitor.number, frame, scale});
  }
  return screens;
}

}  // namespace

std::vector<Screen> screens() {
  return screensOf(x11::monitors());
}

std::optional<Screen> mainScreen() {
  const auto monitors = x11::monitors();
  if (monitors.empty()) return std::nullopt;
  auto main = monitors.begin();
  if (const auto centre = centreOfActiveWindow(x11::session()->connection)) {
    main = std::find_if(monitors.begin(), monitors.end(),
                        [&](const Monitor& monitor) { return contains(monitor, *centre); });
  }
  const auto index = main == monitors.end() ? 0 : main - monitors.begin();
  return screensOf(monitors)[static_cast<size_t>(index)];
}

std::string localizedName(const Screen& screen) {
  const auto monitors = x11::monitors();
  const auto monitor = std::ranges::find(monitors, screen.number, &Monitor::number);
  return monitor != monitors.end() ? monitor->name : "";
}

CGRect visibleFrame(const Screen& screen) {
  const auto monitors = x11::monitors();
  const auto monitor = std::ranges::find(monitors, screen.number, &Monitor::number);
  if (monitor == monitors.end()) return screen.frame;
  const auto area = x11::workArea(x11::session()->connection, *monitor, monitors.size() == 1);
  const double scale = x11::pixelsPerPoint();
  const double fromLeft = (area.left - monitor->x) / scale;
  const double fromBottom = (monitor->y + monitor->height - area.bottom) / scale;
  return CGRectMake(screen.frame.origin.x + fromLeft, screen.frame.origin.y + fromBottom,
                    (area.right - area.left) / scale, (area.bottom - area.top) / scale);
}

void observeScreenParameters(std::function<void()> changed) {
  x11::observeMonitors(std::move(changed));
}

}  // namespace tapdeck::platform
