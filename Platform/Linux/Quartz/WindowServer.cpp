#include "Platform/Linux/Quartz/WindowServer.h"

#include <xcb/randr.h>

#include <algorithm>
#include <cstdlib>

#include "Platform/Linux/Quartz/Session.h"
#include "Platform/Linux/Quartz/XSettings.h"

namespace tapdeck::quartz {

std::vector<Monitor> monitors() {
  if (session() == nullptr) return {};
  Connection& connection = session()->connection;
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
    const auto place = first + static_cast<std::ptrdiff_t>(primary);
    std::rotate(first, place, place + 1);
  }
  return found;
}

// GTK's own rule, so that the points of the host's windows are the points of the host's displays.
double pixelsPerPoint() {
  if (const char* forced = std::getenv("GDK_SCALE")) return std::max(1, std::atoi(forced));
  if (session() == nullptr) return 1;
  return std::max(1, integerSetting(session()->connection, "Gdk/WindowScalingFactor").value_or(1));
}

}  // namespace tapdeck::quartz
