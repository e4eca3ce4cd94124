#include <ApplicationServices/ApplicationServices.h>

#include "Platform/Linux/CoreFoundation/Object.h"
#include "Platform/Linux/X11/ClientWindow.h"
#include "Platform/Linux/X11/PointSpace.h"
#include "Platform/Linux/X11/Session/ServerSession.h"
#include "Platform/Linux/X11/WindowManager.h"

namespace x11 = tapdeck::x11;
using tapdeck::cf::Object;

struct __AXUIElement final : Object {
  explicit __AXUIElement(pid_t application) : process(application) {}
  explicit __AXUIElement(xcb_window_t ofApplication) : window(ofApplication) {}
  const pid_t process = -1;
  /// XCB_WINDOW_NONE for an application.
  const xcb_window_t window = XCB_WINDOW_NONE;
};

struct __AXValue final : Object {
  explicit __AXValue(CGPoint content) : point(content) {}
  const CGPoint point;
};

namespace {

bool names(CFStringRef attribute, const char* name) {
  CFStringRef text = CFStringCreateWithCString(nullptr, name, kCFStringEncodingUTF8);
  const bool same = CFEqual(attribute, text) != 0;
  CFRelease(text);
  return same;
}

AXError copyFocusedWindow(x11::Connection& connection, pid_t process, CFTypeRef* value) {
  const xcb_window_t window = x11::activeWindow(connection);
  if (window == XCB_WINDOW_NONE || x11::processOf(connection, window) != process) {
    return kAXErrorNoValue;
  }
  *value = new __AXUIElement(window);
  return kAXErrorSuccess;
}

AXError setPosition(x11::Connection& connection, xcb_window_t window, CFTypeRef value) {
  const auto* position = dynamic_cast<const __AXValue*>(static_cast<const Object*>(value));
  const auto pixel =
      position != nullptr ? x11::currentPointSpace().pixelAt(position->point) : std::nullopt;
  if (!pixel) return kAXErrorIllegalArgument;
  x11::moveVisibleCorner(connection, window, *pixel);
  return kAXErrorSuccess;
}

}  // namespace

AXUIElementRef AXUIElementCreateApplication(pid_t process) {
  return new __AXUIElement(process);
}

AXError AXUIElementCopyAttributeValue(AXUIElementRef element, CFStringRef attribute,
                                      CFTypeRef* value) {
  if (AXIsProcessTrusted() == 0) return kAXErrorAPIDisabled;
  x11::Connection& connection = x11::session()->connection;
  if (element->window == XCB_WINDOW_NONE) {
    return names(attribute, "AXFocusedWindow")
               ? copyFocusedWindow(connection, element->process, value)
               : kAXErrorAttributeUnsupported;
  }
  if (!x11::exists(connection, element->window)) return kAXErrorInvalidUIElement;
  if (!names(attribute, "AXFullScreen")) return kAXErrorAttributeUnsupported;
  *value =
      CFRetain(x11::isFullScreen(connection, element->window) ? kCFBooleanTrue : kCFBooleanFalse);
  return kAXErrorSuccess;
}

AXError AXUIElementSetAttributeValue(AXUIElementRef element, CFStringRef attribute,
                                     CFTypeRef value) {
  if (AXIsProcessTrusted() == 0) return kAXErrorAPIDisabled;
  x11::Connection& connection = x11::session()->connection;
  if (element->window == XCB_WINDOW_NONE) return kAXErrorAttributeUnsupported;
  if (!x11::exists(connection, element->window)) return kAXErrorInvalidUIElement;
  if (names(attribute, "AXPosition")) return setPosition(connection, element->window, value);
  if (!names(attribute, "AXFullScreen")) return kAXErrorAttributeUnsupported;
  if (value != kCFBooleanTrue && value != kCFBooleanFalse) return kAXErrorIllegalArgument;
  x11::setFullScreen(connection, element->window, value == kCFBooleanTrue);
  return kAXErrorSuccess;
}

AXValueRef AXValueCreate(AXValueType type, const void* structure) {
  if (type != kAXValueTypeCGPoint) return nullptr;
  return new __AXValue(*static_cast<const CGPoint*>(structure));
}
