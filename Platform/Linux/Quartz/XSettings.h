#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Platform/Linux/Quartz/Connection.h"

namespace tapdeck::quartz {

/// The window whose property holds the desktop's settings (the XSETTINGS protocol); none when
/// nobody manages them.
xcb_window_t settingsOwner(Connection& connection);

/// A whole-number setting such as "Gdk/WindowScalingFactor"; absent when the desktop has none.
/// Asked afresh.
std::optional<int32_t> integerSetting(Connection& connection, const std::string& name);

}  // namespace tapdeck::quartz
