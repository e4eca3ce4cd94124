#include "Runner/Display/WindowPlacement.h"

#include <ApplicationServices/ApplicationServices.h>

#include <optional>

#include "Platform/Applications.h"
#include "Platform/Screens.h"
#include "Runner/Diagnostics.h"
#include "Runner/Display/DisplayGeometry.h"
#include "Runner/Owned.h"
#include "Runner/Permissions/Accessibility.h"

namespace tapdeck {
namespace {

// so that the window lies neither under the menu bar nor flush against the Dock
constexpr double kInset = 12;

Owned<CFStringRef> attribute(const char* name) {
  return Owned(CFStringCreateWithCString(nullptr, name, kCFStringEncodingUTF8));
}

/// Empty when the element does not answer or has no such attribute.
Owned<CFTypeRef> copyAttribute(AXUIElementRef element, const char* name) {
  CFTypeRef value = nullptr;
  const AXError error = AXUIElementCopyAttributeValue(element, attribute(name).get(), &value);
  Owned<CFTypeRef> owned(value);
  return error == kAXErrorSuccess ? std::move(owned) : Owned<CFTypeRef>(nullptr);
}

AXError setAttribute(AXUIElementRef element, const char* name, CFTypeRef value) {
  return AXUIElementSetAttributeValue(element, attribute(name).get(), value);
}

Owned<CFTypeRef> focusedWindowOfFrontmostApplication() {
  const auto application = platform::frontmostApplication();
  if (!application) return Owned<CFTypeRef>(nullptr);
  const Owned element(AXUIElementCreateApplication(application->processIdentifier));
  return copyAttribute(element.get(), "AXFocusedWindow");
}

/// In global top-left coordinates.
CGPoint usableCorner(const platform::Screen& screen) {
  const CGRect usable = platform::visibleFrame(screen);
  return CGPointMake(CGRectGetMinX(usable) + kInset,
                     pivotHeight() - usable.origin.y - usable.size.height + kInset);
}

void leaveFullScreen(AXUIElementRef window) {
  const auto isFullScreen = copyAttribute(window, "AXFullScreen");
  if (isFullScreen && CFEqual(isFullScreen.get(), kCFBooleanTrue) != 0) {
    setAttribute(window, "AXFullScreen", kCFBooleanFalse);
  }
}

}  // namespace

void moveWindowToDisplay(MainFlutterWindow& window, const std::string& displayId) {
  if (!accessibilityGate(window)) return;
  const auto screen = screenForDisplayId(displayId);
  if (!screen) return printLine("⚠️ moveWindowToDisplay: unknown display " + displayId);
  const auto focused = focusedWindowOfFrontmostApplication();
  if (!focused) return;
  const auto* const element = static_cast<AXUIElementRef>(focused.get());
  const CGPoint target = usableCorner(*screen);
  leaveFullScreen(element);
  const Owned position(AXValueCreate(static_cast<AXValueType>(kAXValueCGPointType), &target));
  if (!position) return;
  const AXError error = setAttribute(element, "AXPosition", position.get());
  if (error == kAXErrorSuccess) return;
  printLine("⚠️ moveWindowToDisplay: AX set position failed (" + std::to_string(error) + ")");
}

}  // namespace tapdeck
