#pragma once

#include <memory>

#include "Engine/UIEngine.h"
#include "Runner/MainFlutterWindow.h"

namespace tapdeck {

/// What the main window does when it wakes, once the UI engine's view is in place: migrates the
/// login item if that is still to do, creates the "launch_at_startup" channel, registers the
/// plug-ins, creates the control channel and stores it in `_controlChannel`, and starts to observe
/// the screen parameters, in this order. From then on both channels answer. Once per window; main
/// thread only.
void wakeMainWindow(const std::shared_ptr<MainFlutterWindow>& window,
                    const std::shared_ptr<UIEngine>& engine);

}  // namespace tapdeck
