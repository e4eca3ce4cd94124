#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tapdeck::platform {

/// One attached screen as AppKit's NSScreen describes it.
struct Screen {
  /// The display's Quartz number ("NSScreenNumber"); absent when the system gives none.
  std::optional<uint32_t> number;
  /// In points, origin at the bottom-left corner of the primary screen, y growing upwards.
  CGRect frame;
  /// Pixels per point.
  double backingScaleFactor;
};

/// NSScreen.screens: the primary screen first, read afresh; empty when none is attached.
/// Main thread only.
std::vector<Screen> screens();

/// NSScreen.mainScreen: the screen with the window that has the keyboard focus. Main thread only.
std::optional<Screen> mainScreen();

/// NSScreen.localizedName: the user's name for the screen, UTF-8; empty when it is no longer
/// attached. Apart from the rest, for it costs the system more than all of that. Main thread only.
std::string localizedName(const Screen& screen);

/// NSScreen.visibleFrame: the part of the screen's frame that menu bar, Dock and panels leave free,
/// in the frame's coordinates; the whole frame when the screen is no longer attached. Main thread
/// only.
CGRect visibleFrame(const Screen& screen);

/// Calls `changed` on the main thread at each NSApplicationDidChangeScreenParametersNotification
/// (a screen attached, removed, rearranged or its resolution changed) until the process ends.
void observeScreenParameters(std::function<void()> changed);

}  // namespace tapdeck::platform
