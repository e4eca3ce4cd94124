#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <cstdint>

namespace tapdeck::platform {

/// NSEvent.mouseLocation: the pointer in points, origin at the bottom-left corner of the primary
/// screen, y growing upwards. Main thread only.
CGPoint mouseLocation();

/// NSEvent.doubleClickInterval: the longest time, in seconds, between two clicks that count as one
/// double click; the user's setting. Main thread only.
double doubleClickInterval();

/// The Quartz event of an NSEvent of type system-defined at location (0, 0), with timestamp 0, no
/// window and no graphics context. Owned by the caller (CFRelease); null when it cannot be made.
/// Main thread only.
CGEventRef createSystemDefinedEvent(uint32_t modifierFlags, int16_t subtype, int64_t data1,
                                    int64_t data2);

}  // namespace tapdeck::platform
