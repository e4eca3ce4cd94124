#include "Platform/Linux/Applications/ManagedWindows.h"

#include <glib.h>

#include <algorithm>
#include <cstring>
#include <initializer_list>

#include "Platform/Linux/Quartz/Session.h"

namespace tapdeck::applications {
namespace {

using quartz::Connection;

std::vector<uint32_t> numbers(Connection& connection, xcb_window_t window, const char* name,
                              xcb_atom_t type) {
  const auto bytes = connection.property(window, connection.atom(name), type);
  std::vector<uint32_t> values(bytes.size() / sizeof(uint32_t));
  if (!values.empty()) std::memcpy(values.data(), bytes.data(), values.size() * sizeof(uint32_t));
  return values;
}

/// A property of text up to its first NUL, of either type that applications give it.
std::string text(Connection& connection, xcb_window_t window, const char* name) {
  for (const xcb_atom_t type : {connection.atom("UTF8_STRING"), xcb_atom_t{XCB_ATOM_STRING}}) {
    const auto bytes = connection.property(window, connection.atom(name), type);
    if (!bytes.empty()) return {bytes.begin(), std::find(bytes.begin(), bytes.end(), 0)};
  }
  return {};
}

void readClassHint(Connection& connection, ManagedWindow& window) {
  const auto bytes = connection.property(window.window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING);
  const auto first = std::find(bytes.begin(), bytes.end(), 0);
  window.instance.assign(bytes.begin(), first);
  if (first != bytes.end()) {
    window.className.assign(first + 1, std::find(first + 1, bytes.end(), 0));
  }
}

bool holdsAny(Connection& connection, xcb_window_t window, const char* property,
              std::initializer_list<const char*> names) {
  const auto atoms = numbers(connection, window, property, XCB_ATOM_ATOM);
  return std::any_of(names.begin(), names.end(), [&](const char* name) {
    return std::find(atoms.begin(), atoms.end(), connection.atom(name)) != atoms.end();
  });
}

bool isOrdinary(Connection& connection, xcb_window_t window) {
  return !holdsAny(connection, window, "_NET_WM_STATE", {"_NET_WM_STATE_SKIP_TASKBAR"}) &&
         !holdsAny(connection, window, "_NET_WM_WINDOW_TYPE",
                   {"_NET_WM_WINDOW_TYPE_DESKTOP", "_NET_WM_WINDOW_TYPE_DOCK"});
}

ManagedWindow describe(Connection& connection, xcb_window_t window) {
  ManagedWindow described;
  described.window = window;
  readClassHint(connection, described);
  described.gtkApplicationId = text(connection, window, "_GTK_APPLICATION_ID");
  described.desktopFileHint = text(connection, window, "_BAMF_DESKTOP_FILE");
  const auto process = numbers(connection, window, "_NET_WM_PID", XCB_ATOM_CARDINAL);
  if (!process.empty()) described.processId = static_cast<int32_t>(process.front());
  described.isOrdinary = isOrdinary(connection, window);
  return described;
}

}  // namespace

std::vector<ManagedWindow> managedWindows() {
  std::vector<ManagedWindow> windows;
  if (quartz::session() == nullptr) return windows;
  Connection& connection = quartz::session()->connection;
  auto list = numbers(connection, connection.root(), "_NET_CLIENT_LIST_STACKING", XCB_ATOM_WINDOW);
  if (list.empty()) {
    list = numbers(connection, connection.root(), "_NET_CLIENT_LIST", XCB_ATOM_WINDOW);
  }
  for (const xcb_window_t window : list) windows.push_back(describe(connection, window));
  return windows;
}

const DesktopEntry* entryOf(const ManagedWindow& window, const DesktopEntries& entries) {
  if (const auto* hinted = entries.atPath(window.desktopFileHint)) return hinted;
  if (const auto* named = entries.withId(window.gtkApplicationId + ".desktop")) return named;
  return entries.ofWindowClass(window.instance, window.className);
}

void activate(const ManagedWindow& window) {
  // as a pager asks, whose wish window managers take for the user's own
  constexpr uint32_t kFromPager = 2;
  Connection& connection = quartz::session()->connection;
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window.window;
  message.type = connection.atom("_NET_ACTIVE_WINDOW");
  message.data.data32[0] = kFromPager;
  message.data.data32[1] = XCB_CURRENT_TIME;
  xcb_send_event(connection.get(), 0, connection.root(),
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&message));
  connection.flush();
}

}  // namespace tapdeck::applications
