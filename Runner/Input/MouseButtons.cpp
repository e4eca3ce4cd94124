#include "Runner/Input/MouseButtons.h"

namespace tapdeck {

MouseButtonEventTypes mouseButtonEventTypes(std::string_view name) {
  if (name == "right") {
    return {kCGEventRightMouseDown, kCGEventRightMouseUp, kCGEventRightMouseDragged,
            kCGMouseButtonRight};
  }
  if (name == "center" || name == "middle") {
    return {kCGEventOtherMouseDown, kCGEventOtherMouseUp, kCGEventOtherMouseDragged,
            kCGMouseButtonCenter};
  }
  return {kCGEventLeftMouseDown, kCGEventLeftMouseUp, kCGEventLeftMouseDragged, kCGMouseButtonLeft};
}

}  // namespace tapdeck
