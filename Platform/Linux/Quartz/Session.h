#pragma once

#include <functional>

#include "Platform/Linux/Quartz/Connection.h"
#include "Platform/Linux/Quartz/Cursor.h"
#include "Platform/Linux/Quartz/EventPoster.h"
#include "Platform/Linux/Quartz/Images/DisplayImages.h"
#include "Platform/Linux/Quartz/MonitorWatch.h"

namespace tapdeck::quartz {

/// What stands on one connection to the X server. Its end lets go of all that it holds.
struct Session {
  Connection connection;
  Cursor cursor{connection};
  EventPoster poster{connection};
  MonitorWatch monitorWatch;
  DisplayImages displayImages{connection};
};

/// Null until connectToWindowServer. Main thread only.
Session* session();

}  // namespace tapdeck::quartz
