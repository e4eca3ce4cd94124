#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Platform/Linux/X11/Connection.h"

namespace tapdeck::x11 {

/// One RandR 1.5 monitor.
struct Monitor {
  /// The atom of the monitor's name: the display's number for as long as the X server runs.
  uint32_t number;
  std::string name;
  /// In pixels of the root window, whose origin is its top-left corner.
  int x, y, width, height;
  friend bool operator==(const Monitor&, const Monitor&) = default;
};

/// Queries the server's monitors (RRGetMonitors), in one round trip: the primary one first, then in
/// the server's order. Empty when there is none or the server is gone.
std::vector<Monitor> queryMonitors(Connection& connection);

}  // namespace tapdeck::x11
