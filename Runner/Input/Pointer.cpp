#include "Runner/Input/Pointer.h"

#include <algorithm>

#include "Platform/Clock.h"
#include "Platform/Events.h"
#include "Platform/HeldInput.h"
#include "Platform/Screens.h"
#include "Runner/CheckedConversion.h"
#include "Runner/Display/DisplayGeometry.h"
#include "Runner/Input/MouseButtons.h"
#include "Runner/Owned.h"
#include "Runner/Permissions/Accessibility.h"

namespace tapdeck {
namespace {

using Event = Owned<CGEventRef>;
using EventSource = Owned<CGEventSourceRef>;

EventSource makeSource() {
  return EventSource(CGEventSourceCreate(kCGEventSourceStateCombinedSessionState));
}

/// Adds `distance` to the remainder and takes the whole points out of it.
int64_t takeWholePoints(double& remainder, double distance, const char* what) {
  const double total = remainder + distance;
  const int64_t step = truncatedToInt64(total, what);
  remainder = total - static_cast<double>(step);
  return step;
}

void postWithClickState(CGEventSourceRef source, CGEventType type, CGPoint position,
                        CGMouseButton button, int64_t clickState) {
  const Event event(CGEventCreateMouseEvent(source, type, position, button));
  if (!event) return;
  CGEventSetIntegerValueField(event.get(), kCGMouseEventClickState, clickState);
  CGEventPost(kCGHIDEventTap, event.get());
}

void postButton(CGEventType type, CGMouseButton button) {
  const Event event(CGEventCreateMouseEvent(nullptr, type, currentPointerPosition(), button));
  if (event) CGEventPost(kCGHIDEventTap, event.get());
}

/// The button that a click of this name means: a click does not know "middle".
MouseButtonEventTypes clickEventTypes(const std::string& name) {
  return mouseButtonEventTypes(name == "middle" ? "left" : name);
}

void countClick(MainFlutterWindow& window, const std::string& button) {
  const double now = platform::systemUptime();
  const bool continues = button == window._lastClickButton &&
                         now - window._lastClickTime <= platform::doubleClickInterval();
  window._clickCount = continues ? window._clickCount + 1 : 1;
  window._lastClickTime = now;
  window._lastClickButton = button;
}

CGPoint eventLocation() {
  const Event event(CGEventCreate(nullptr));
  return event ? CGEventGetLocation(event.get()) : CGPointMake(0, 0);
}

}  // namespace

CGPoint currentPointerPosition() {
  const CGPoint location = platform::mouseLocation();
  return CGPointMake(location.x, pivotHeight() - location.y);
}

void moveMouse(MainFlutterWindow& window, double dx, double dy) {
  if (!accessibilityGate(window)) return;
  const int64_t stepX = takeWholePoints(window._fractionalX, dx, "pointer movement along x");
  const int64_t stepY = takeWholePoints(window._fractionalY, dy, "pointer movement along y");
  if (stepX == 0 && stepY == 0) return;
  const CGPoint position = currentPointerPosition();
  const CGPoint target =
      CGPointMake(position.x + static_cast<double>(stepX), position.y + static_cast<double>(stepY));
  postAbsoluteMove(window, clampToDisplays(target));
}

void moveMouseAbs(MainFlutterWindow& window, double x, double y,
                  const std::optional<std::string>& display) {
  if (!accessibilityGate(window)) return;
  const std::optional<CGPoint> point = mapNormalizedPoint(display, x, y);
  window._fractionalX = 0;
  window._fractionalY = 0;
  if (point) postAbsoluteMove(window, clampToDisplays(*point));
}

void postAbsoluteMove(const MainFlutterWindow& window, CGPoint point) {
  CGEventType type = kCGEventMouseMoved;
  CGMouseButton button = kCGMouseButtonLeft;
  if (window._heldMouseButton) {
    const auto types = mouseButtonEventTypes(*window._heldMouseButton);
    type = types.drag;
    button = types.button;
  }
  const EventSource source = makeSource();
  if (!source) return;
  const Event event(CGEventCreateMouseEvent(source.get(), type, point, button));
  if (event) {
    CGEventPost(kCGHIDEventTap, event.get());
  } else {
    CGWarpMouseCursorPosition(point);
  }
}

void click(MainFlutterWindow& window, const std::string& button) {
  const CGPoint position = currentPointerPosition();
  const auto types = clickEventTypes(button);
  countClick(window, button);
  const EventSource source = makeSource();
  if (!source) return;
  postWithClickState(source.get(), types.press, position, types.button, window._clickCount);
  postWithClickState(source.get(), types.release, position, types.button, window._clickCount);
}

void doubleClick() {
  const CGPoint position = currentPointerPosition();
  const auto types = mouseButtonEventTypes("left");
  const EventSource source = makeSource();
  if (!source) return;
  for (const int64_t clickState : {1, 2}) {
    postWithClickState(source.get(), types.press, position, types.button, clickState);
    postWithClickState(source.get(), types.release, position, types.button, clickState);
  }
}

void mouseDown(MainFlutterWindow& window, const std::string& button) {
  window._heldMouseButton = button;
  const auto types = mouseButtonEventTypes(button);
  platform::noteButton(types.button, types.release, true);
  postButton(types.press, types.button);
}

void mouseUp(MainFlutterWindow& window, const std::string& button) {
  const auto types = mouseButtonEventTypes(button);
  postButton(types.release, types.button);
  platform::noteButton(types.button, types.release, false);
  window._heldMouseButton.reset();
}

void hideCursor(MainFlutterWindow* window) {
  if (window != nullptr) window->_shouldHideCursor = true;
  CGDisplayHideCursor(CGMainDisplayID());
}

void showCursor(MainFlutterWindow* window) {
  if (window != nullptr) window->_shouldHideCursor = false;
  CGDisplayShowCursor(CGMainDisplayID());
}

ValueMap screenCursor(const std::optional<std::string>& display) {
  ValueMap nowhere{{"onDisplay", Value(false)}};
  const std::optional<CGDirectDisplayID> id = resolveDisplayId(display);
  if (!id) return nowhere;
  const CGRect bounds = CGDisplayBounds(*id);
  if (!(CGRectGetWidth(bounds) > 0 && CGRectGetHeight(bounds) > 0)) return nowhere;

  const CGPoint location = eventLocation();
  const double fx = (location.x - CGRectGetMinX(bounds)) / CGRectGetWidth(bounds);
  const double fy = (location.y - CGRectGetMinY(bounds)) / CGRectGetHeight(bounds);
  const double x = std::clamp(fx, 0.0, 1.0);
  const double y = std::clamp(fy, 0.0, 1.0);
  return ValueMap{{"x", Value(x)}, {"y", Value(y)}, {"onDisplay", Value(x == fx && y == fy)}};
}

void debugWarp(const std::optional<CGPoint>& point) {
  if (point) {
    CGWarpMouseCursorPosition(*point);
  } else if (const auto screen = platform::mainScreen()) {
    const CGRect& frame = screen->frame;
    CGWarpMouseCursorPosition(
        CGPointMake(CGRectGetMidX(frame), pivotHeight() - CGRectGetMidY(frame)));
  }
}

}  // namespace tapdeck
