#pragma once

#include <memory>

#include "Runner/MainFlutterWindow.h"

namespace tapdeck {

// The laser pointer: a glowing red dot over everything else that follows the pointer and takes no
// clicks. Both return at once; the main queue does the work, or nothing when the window is gone by
// then.

/// Shows the dot; a dot that is shown stays as it is.
void showLaser(const std::shared_ptr<MainFlutterWindow>& window);

/// Takes the dot away, if there is one.
void hideLaser(const std::shared_ptr<MainFlutterWindow>& window);

}  // namespace tapdeck
