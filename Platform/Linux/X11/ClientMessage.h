#pragma once

#include <xcb/xcb.h>

#include <array>
#include <cstdint>

#include "Platform/Linux/X11/Connection.h"

namespace tapdeck::x11 {

/// Puts a ClientMessage event about `window`, with five numbers of 32 bits, into the connection's
/// buffer; the caller flushes. It goes to those clients that have selected one of the events in
/// `mask` on `destination`; with XCB_EVENT_MASK_NO_EVENT, to the client that created that window.
void sendClientMessage(const Connection& connection, xcb_window_t window, xcb_atom_t type,
                       const std::array<uint32_t, 5>& data, xcb_window_t destination,
                       uint32_t mask);

}  // namespace tapdeck::x11
