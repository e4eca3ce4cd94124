#include "Platform/Linux/X11/Monitors.h"

#include <xcb/randr.h>

#include <algorithm>

namespace tapdeck::x11 {

std::vector<Monitor> queryMonitors(Connection& connection) {
  const auto reply = connection.wait(xcb_randr_get_monitors(connection.get(), connection.root(), 1),
                                     xcb_randr_get_monitors_reply);
  if (reply == nullptr) return {};

  std::vector<Monitor> found;
  size_t primary = 0;
  for (auto each = xcb_randr_get_monitors_monitors_iterator(reply.get()); each.rem > 0;
       xcb_randr_monitor_info_next(&each)) {
    const auto& info = *each.data;
    if (info.primary != 0) primary = found.size();
    found.push_back(
        {info.name, connection.atomName(info.name), info.x, info.y, info.width, info.height});
  }
  if (!found.empty()) {
    const auto first = found.begin();
    const auto primaryMonitor = first + static_cast<std::ptrdiff_t>(primary);
    std::rotate(first, primaryMonitor, primaryMonitor + 1);
  }
  return found;
}

}  // namespace tapdeck::x11
