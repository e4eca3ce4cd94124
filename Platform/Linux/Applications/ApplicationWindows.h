#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Linux/Applications/DesktopEntries.h"

namespace tapdeck::applications {

/// A window that the window manager manages, and what it says of the application it belongs to.
struct ApplicationWindow {
  xcb_window_t window = XCB_WINDOW_NONE;
  /// Both parts of the class hint (ICCCM WM_CLASS), UTF-8.
  std::string instance;
  std::string className;
  /// _GTK_APPLICATION_ID; empty when the application does not set it.
  std::string gtkApplicationId;
  /// The path of its desktop entry (_BAMF_DESKTOP_FILE); empty when it does not set it.
  std::string desktopFileHint;
  /// -1 when the application does not say.
  int32_t processId = -1;
  /// Whether task bars show it: no panel, no desktop, nothing that skips them.
  bool isOrdinary = true;
};

/// From the bottom of the stack to its top (EWMH); empty when there is no window manager. Main
/// thread only, as all here.
std::vector<ApplicationWindow> applicationWindows();

/// The window that has the keyboard focus; absent when none has it.
std::optional<ApplicationWindow> activeApplicationWindow();

/// The application that the window belongs to; null when no desktop entry describes it.
const DesktopEntry* entryOf(const ApplicationWindow& window, const DesktopEntries& entries);

/// Has the window manager show the window, raise it and give it the keyboard focus (EWMH).
void activate(const ApplicationWindow& window);

}  // namespace tapdeck::applications
