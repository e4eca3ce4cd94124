#include "Platform/Linux/X11/WindowManager.h"

#include <algorithm>
#include <cstring>

#include "Platform/Linux/X11/ClientMessage.h"

namespace tapdeck::x11 {
namespace {

std::vector<uint32_t> numbersIn(const std::vector<uint8_t>& bytes) {
  std::vector<uint32_t> values(bytes.size() / sizeof(uint32_t));
  if (!values.empty()) std::memcpy(values.data(), bytes.data(), values.size() * sizeof(uint32_t));
  return values;
}

}  // namespace

std::vector<uint32_t> numbersOf(Connection& connection, xcb_window_t window, const char* property,
                                xcb_atom_t type) {
  return numbersIn(connection.property(window, connection.atom(property), type));
}

std::vector<int> lengthsOf(Connection& connection, xcb_window_t window, const char* property) {
  return lengthsIn(connection.property(window, connection.atom(property), XCB_ATOM_CARDINAL));
}

std::vector<int> lengthsIn(const std::vector<uint8_t>& bytes) {
  std::vector<int> lengths;
  for (const uint32_t number : numbersIn(bytes)) {
    lengths.push_back(std::clamp(static_cast<int>(number), -kMaxLength, kMaxLength));
  }
  return lengths;
}

bool hasAnyAtom(Connection& connection, xcb_window_t window, const char* property,
                std::initializer_list<const char*> names) {
  const auto atoms = numbersOf(connection, window, property, XCB_ATOM_ATOM);
  return std::any_of(names.begin(), names.end(), [&](const char* name) {
    return std::find(atoms.begin(), atoms.end(), connection.atom(name)) != atoms.end();
  });
}

std::vector<xcb_window_t> managedClients(Connection& connection) {
  auto clients =
      numbersOf(connection, connection.root(), "_NET_CLIENT_LIST_STACKING", XCB_ATOM_WINDOW);
  if (!clients.empty()) return clients;
  return numbersOf(connection, connection.root(), "_NET_CLIENT_LIST", XCB_ATOM_WINDOW);
}

xcb_window_t activeWindow(Connection& connection) {
  const auto windows =
      numbersOf(connection, connection.root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW);
  return windows.empty() ? xcb_window_t{XCB_WINDOW_NONE} : windows.front();
}

int32_t processOf(Connection& connection, xcb_window_t window) {
  const auto process = numbersOf(connection, window, "_NET_WM_PID", XCB_ATOM_CARDINAL);
  return process.empty() ? -1 : static_cast<int32_t>(process.front());
}

void sendToWindowManager(Connection& connection, xcb_window_t window, const char* request,
                         const std::array<uint32_t, 5>& data) {
  sendClientMessage(connection, window, connection.atom(request), data, connection.root(),
                    XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
  connection.flush();
}

}  // namespace tapdeck::x11
