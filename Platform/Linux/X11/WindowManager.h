#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include "Platform/Linux/X11/Connection.h"

namespace tapdeck::quartz {

// What a client may read of and ask from the window manager (EWMH). Main thread only.

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

/// Whether one of these names is among a property's atoms.
bool holdsAny(Connection& connection, xcb_window_t window, const char* property,
              std::initializer_list<const char*> names);

/// The windows that the window manager looks after, the lowest first where it says; empty when
/// there is no window manager.
std::vector<xcb_window_t> managedClients(Connection& connection);

/// The window that has the focus; XCB_WINDOW_NONE when none has it.
xcb_window_t activeWindow(Connection& connection);

/// The process that the window says it belongs to; -1 when it says nothing.
int32_t processOf(Connection& connection, xcb_window_t window);

/// Sends the window manager a wish about a window. Taken for the user's own where the wish says
/// that it comes from a pager.
void ask(Connection& connection, xcb_window_t window, const char* wish,
         const std::array<uint32_t, 5>& details);

/// The source indication of a pager.
inline constexpr uint32_t kFromPager = 2;

}  // namespace tapdeck::quartz
