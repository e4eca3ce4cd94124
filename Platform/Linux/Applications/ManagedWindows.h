#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Linux/Applications/DesktopEntries.h"

namespace tapdeck::applications {

/// A window that the window manager looks after.
struct ManagedWindow {
  xcb_window_t window = XCB_WINDOW_NONE;
  /// Both parts of the class hint (ICCCM WM_CLASS), UTF-8.
  std::string instance;
  std::string className;
  /// What the application says about itself; empty when it says nothing.
  std::string gtkApplicationId;
  std::string desktopFileHint;
  /// -1 when the application does not say.
  int32_t processId = -1;
  /// Whether task bars show it: no panel, no desktop, nothing that skips them.
  bool isOrdinary = true;
};

/// The lowest first (EWMH); empty when there is no window manager. Main thread only, as all here.
std::vector<ManagedWindow> managedWindows();

/// The one that has the keyboard; absent when none has it.
std::optional<ManagedWindow> activeManagedWindow();

/// The application that the window belongs to; null when no desktop entry describes it.
const DesktopEntry* entryOf(const ManagedWindow& window, const DesktopEntries& entries);

/// Asks the window manager to show the window, raise it and give it the keyboard (EWMH).
void activate(const ManagedWindow& window);

}  // namespace tapdeck::applications
