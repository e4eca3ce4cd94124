#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include "Platform/Linux/X11/Connection.h"

namespace tapdeck::x11 {

// What the window manager and the applications tell every client, and the messages that the window
// manager takes (EWMH). Each connection is for one thread at a time.

/// A property of whole numbers; empty when it is missing or of another type.
std::vector<uint32_t> numbersOf(Connection& connection, xcb_window_t window, const char* property,
                                xcb_atom_t type);

/// A property of lengths and places (CARDINAL), in pixels of the root window. What no X screen has
/// room for is cut to kMaxLength, so that it can be counted with.
std::vector<int> lengthsOf(Connection& connection, xcb_window_t window, const char* property);

/// X's coordinates have 16 bits.
inline constexpr int kMaxLength = 0x7fff;

/// The lengths in a property's bytes, as Connection::property gives them. Any thread.
std::vector<int> lengthsIn(const std::vector<uint8_t>& bytes);

/// Whether a property of atoms has one of these.
bool hasAnyAtom(Connection& connection, xcb_window_t window, const char* property,
                std::initializer_list<const char*> names);

/// The windows that the window manager manages, from the bottom of the stack to its top where it
/// tells the order; empty when there is no window manager.
std::vector<xcb_window_t> managedClients(Connection& connection);

/// The window that has the focus; XCB_WINDOW_NONE when none has it.
xcb_window_t activeWindow(Connection& connection);

/// The process that the window belongs to, as its application says (_NET_WM_PID); -1 when it does
/// not say.
int32_t processOf(Connection& connection, xcb_window_t window);

/// Sends the window manager a request about a window, such as "_NET_WM_STATE", with its data.
void sendToWindowManager(Connection& connection, xcb_window_t window, const char* request,
                         const std::array<uint32_t, 5>& data);

/// The source indication of a pager, for the data of a request: window managers carry it out as if
/// the user had made it.
inline constexpr uint32_t kFromPager = 2;

}  // namespace tapdeck::x11
