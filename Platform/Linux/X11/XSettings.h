#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "Platform/Linux/X11/Connection.h"

namespace tapdeck::x11 {

/// The desktop's whole-number settings (the XSETTINGS protocol) by their names, such as
/// "Gdk/WindowScalingFactor".
using IntegerSettings = std::map<std::string, int32_t, std::less<>>;

/// The window whose property holds the settings; XCB_WINDOW_NONE when nobody manages them.
xcb_window_t settingsOwner(Connection& connection);

/// The settings that this window's property holds; empty when it holds none.
IntegerSettings querySettings(Connection& connection, xcb_window_t owner);

/// Reads the property's bytes as far as they are well formed.
IntegerSettings parseSettings(const std::vector<uint8_t>& bytes);

}  // namespace tapdeck::x11
