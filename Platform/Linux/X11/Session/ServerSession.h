#pragma once

#include <optional>
#include <vector>

#include "Platform/Linux/X11/Capture/DisplayImages.h"
#include "Platform/Linux/X11/Connection.h"
#include "Platform/Linux/X11/Cursor.h"
#include "Platform/Linux/X11/Input/EventPoster.h"
#include "Platform/Linux/X11/ServerState.h"

namespace tapdeck::x11 {

/// Everything that uses the session's connection to the X server. Its destructor releases every key
/// and button that it holds pressed, and shows the cursor.
struct ServerSession {
  Connection connection;
  ServerState state;
  Cursor cursor{connection};
  EventPoster poster{connection, state};
  DisplayImages displayImages{connection};
};

/// Null until connectToWindowServer. Main thread only, as all of this.
ServerSession* session();

// Shorthands for the session's; without a session they give what they give when the server is gone.

/// The monitors, the primary one first. Empty when there is none or the server is gone.
std::vector<Monitor> monitors();

/// Pixels per point, the same for the whole X screen: the desktop's window scaling factor.
double pixelsPerPoint();

/// How points lie on the root window now.
PointSpace currentPointSpace();

/// Where the pointer is, or will be once the events that still wait are sent; absent when the
/// server is gone. One round trip.
std::optional<Pixel> pointerPixel();

}  // namespace tapdeck::x11
