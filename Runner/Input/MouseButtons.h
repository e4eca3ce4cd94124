#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <string_view>

namespace tapdeck {

/// The event types and the number of one mouse button.
struct MouseButtonEventTypes {
  CGEventType press;
  CGEventType release;
  CGEventType drag;
  CGMouseButton button;
};

/// The button of that name: "right", "center" or "middle"; every other name is the left one. Names
/// are matched exactly.
MouseButtonEventTypes mouseButtonEventTypes(std::string_view name);

}  // namespace tapdeck
