#pragma once

#include <memory>

#include "Platform/Images.h"
#include "Platform/Linux/Applications/DesktopEntries.h"

namespace tapdeck::platform {

/// The icon that the desktop entry names, or else the icon theme's generic one.
std::shared_ptr<const Image> iconOf(const applications::DesktopEntry& entry);

}  // namespace tapdeck::platform
