#include "Platform/Linux/Applications/ApplicationWindows.h"

#include <algorithm>
#include <initializer_list>

#include "Platform/Linux/X11/Session/ServerSession.h"
#include "Platform/Linux/X11/WindowManager.h"

namespace tapdeck::applications {
namespace {

using x11::Connection;
using x11::hasAnyAtom;

/// A property of text up to its first NUL, of either type that applications give it.
std::string text(Connection& connection, xcb_window_t window, const char* name) {
  for (const xcb_atom_t type : {connection.atom("UTF8_STRING"), xcb_atom_t{XCB_ATOM_STRING}}) {
    const auto bytes = connection.property(window, connection.atom(name), type);
    if (!bytes.empty()) return {bytes.begin(), std::find(bytes.begin(), bytes.end(), 0)};
  }
  return {};
}

void readClassHint(Connection& connection, ApplicationWindow& window) {
  const auto bytes = connection.property(window.window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING);
  const auto first = std::find(bytes.begin(), bytes.end(), 0);
  window.instance.assign(bytes.begin(), first);
  if (first != bytes.end()) {
    window.className.assign(first + 1, std::find(first + 1, bytes.end(), 0));
  }
}

bool isOrdinary(Connection& connection, xcb_window_t window) {
  return !hasAnyAtom(connection, window, "_NET_WM_STATE", {"_NET_WM_STATE_SKIP_TASKBAR"}) &&
         !hasAnyAtom(connection, window, "_NET_WM_WINDOW_TYPE",
                     {"_NET_WM_WINDOW_TYPE_DESKTOP", "_NET_WM_WINDOW_TYPE_DOCK"});
}

ApplicationWindow describe(Connection& connection, xcb_window_t window) {
  ApplicationWindow described;
  described.window = window;
  readClassHint(connection, described);
  described.gtkApplicationId = text(connection, window, "_GTK_APPLICATION_ID");
  described.desktopFileHint = text(connection, window, "_BAMF_DESKTOP_FILE");
  described.processId = x11::processOf(connection, window);
  described.isOrdinary = isOrdinary(connection, window);
  return described;
}

}  // namespace

std::vector<ApplicationWindow> applicationWindows() {
  std::vector<ApplicationWindow> windows;
  if (x11::session() == nullptr) return windows;
  Connection& connection = x11::session()->connection;
  for (const xcb_window_t window : x11::managedClients(connection)) {
    windows.push_back(describe(connection, window));
  }
  return windows;
}

const DesktopEntry* entryOf(const ApplicationWindow& window, const DesktopEntries& entries) {
  if (const auto* hinted = entries.atPath(window.desktopFileHint)) return hinted;
  if (!window.gtkApplicationId.empty()) {
    if (const auto* named = entries.withId(window.gtkApplicationId + ".desktop")) return named;
  }
  return entries.ofWindowClass(window.instance, window.className);
}

std::optional<ApplicationWindow> activeApplicationWindow() {
  if (x11::session() == nullptr) return std::nullopt;
  Connection& connection = x11::session()->connection;
  const xcb_window_t window = x11::activeWindow(connection);
  return window != XCB_WINDOW_NONE ? std::optional(describe(connection, window)) : std::nullopt;
}

void activate(const ApplicationWindow& window) {
  x11::sendToWindowManager(x11::session()->connection, window.window, "_NET_ACTIVE_WINDOW",
                           {x11::kFromPager, XCB_CURRENT_TIME, 0, 0, 0});
}

}  // namespace tapdeck::applications
