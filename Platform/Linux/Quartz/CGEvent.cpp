#include "Platform/Linux/X11/Input/Event.h"
#include "Platform/Linux/X11/PointSpace.h"
#include "Platform/Linux/X11/Session/ServerSession.h"
#include "Platform/Linux/X11/Shutdown.h"

using tapdeck::x11::session;

struct __CGEventSource final : tapdeck::cf::Object {};

namespace {

bool isMouseEvent(CGEventType type) {
  switch (type) {
    case kCGEventLeftMouseDown:
    case kCGEventLeftMouseUp:
    case kCGEventLeftMouseDragged:
    case kCGEventRightMouseDown:
    case kCGEventRightMouseUp:
    case kCGEventRightMouseDragged:
    case kCGEventOtherMouseDown:
    case kCGEventOtherMouseUp:
    case kCGEventOtherMouseDragged:
    case kCGEventMouseMoved:
      return true;
    default:
      return false;
  }
}

/// The types of the two first buttons name their button themselves.
uint32_t buttonOf(CGEventType type, CGMouseButton button) {
  switch (type) {
    case kCGEventRightMouseDown:
    case kCGEventRightMouseUp:
    case kCGEventRightMouseDragged:
      return kCGMouseButtonRight;
    case kCGEventOtherMouseDown:
    case kCGEventOtherMouseUp:
    case kCGEventOtherMouseDragged:
      return button;
    default:
      return kCGMouseButtonLeft;
  }
}

}  // namespace

// X knows one state of keys and buttons, whatever the source.
CGEventSourceRef CGEventSourceCreate(CGEventSourceStateID) {
  return new __CGEventSource;
}

CGEventRef CGEventCreate(CGEventSourceRef) {
  const auto pointer = tapdeck::x11::pointerPixel();
  if (!pointer) return nullptr;
  auto* event = new __CGEvent(kCGEventNull);
  event->location = tapdeck::x11::currentPointSpace().pointAt(pointer->x, pointer->y);
  return event;
}

CGEventRef CGEventCreateMouseEvent(CGEventSourceRef, CGEventType type, CGPoint position,
                                   CGMouseButton button) {
  if (!isMouseEvent(type)) return nullptr;
  auto* event = new __CGEvent(type);
  event->location = position;
  event->button = buttonOf(type, button);
  return event;
}

CGEventRef CGEventCreateKeyboardEvent(CGEventSourceRef, CGKeyCode key, bool keyDown) {
  if (tapdeck::x11::shutdownDeadline()) return nullptr;
  auto* event = new __CGEvent(keyDown ? kCGEventKeyDown : kCGEventKeyUp);
  event->keyCode = key;
  return event;
}

CGEventRef CGEventCreateScrollWheelEvent2(CGEventSourceRef, CGScrollEventUnit units,
                                          uint32_t wheelCount, int32_t wheel1, int32_t wheel2,
                                          int32_t) {
  if (units != kCGScrollEventUnitPixel || wheelCount < 1 || wheelCount > 3) return nullptr;
  auto* event = new __CGEvent(kCGEventScrollWheel);
  event->verticalScroll = wheel1;
  if (wheelCount > 1) event->horizontalScroll = wheel2;
  return event;
}

CGPoint CGEventGetLocation(CGEventRef event) {
  return event->location;
}

void CGEventSetFlags(CGEventRef event, CGEventFlags flags) {
  event->flags = flags;
}

void CGEventSetIntegerValueField(CGEventRef event, CGEventField field, int64_t value) {
  if (field == kCGMouseEventClickState) event->clickState = value;
}

void CGEventKeyboardSetUnicodeString(CGEventRef event, UniCharCount length, const UniChar* units) {
  event->text.assign(units, units + length);
}

void CGEventPost(CGEventTapLocation, CGEventRef event) {
  if (session() != nullptr) session()->poster.post(*event);
}
