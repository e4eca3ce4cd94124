#pragma once

#include <CoreGraphics/CoreGraphics.h>

namespace tapdeck::platform {

/// NSEvent.mouseLocation: the pointer in points, origin at the bottom-left corner of the primary
/// screen, y growing upwards. Main thread only.
CGPoint mouseLocation();

/// NSEvent.doubleClickInterval: the longest time, in seconds, between two clicks that count as one
/// double click; the user's setting. Main thread only.
double doubleClickInterval();

}  // namespace tapdeck::platform
