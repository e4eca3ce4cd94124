// Windows of other applications, recorded. An element is a Core Foundation data object that holds
// its name, so that the real CFRelease ends it on every system.

#include <ApplicationServices/ApplicationServices.h>

#include <string>

#include "Platform/Applications.h"
#include "Tests/Support/Recording/Recording.h"

using tapdeck::recording::record;
using tapdeck::recording::script;

namespace {

CFDataRef dataOf(const std::string& text) {
  return CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(text.data()),
                      static_cast<CFIndex>(text.size()));
}

std::string textOf(CFTypeRef object) {
  if (object == kCFBooleanTrue) return "true";
  if (object == kCFBooleanFalse) return "false";
  const auto* data = static_cast<CFDataRef>(object);
  return {reinterpret_cast<const char*>(CFDataGetBytePtr(data)),
          static_cast<size_t>(CFDataGetLength(data))};
}

bool names(CFStringRef attribute, const char* name) {
  CFStringRef text = CFStringCreateWithCString(nullptr, name, kCFStringEncodingUTF8);
  const bool same = CFEqual(attribute, text) != 0;
  CFRelease(text);
  return same;
}

}  // namespace

std::optional<tapdeck::platform::RunningApplication> tapdeck::platform::frontmostApplication() {
  const auto process = script().windows.frontmostProcess;
  if (!process) return std::nullopt;
  RunningApplication application;
  application.processIdentifier = *process;
  return application;
}

AXUIElementRef AXUIElementCreateApplication(pid_t process) {
  return reinterpret_cast<AXUIElementRef>(dataOf("application " + std::to_string(process)));
}

AXError AXUIElementCopyAttributeValue(AXUIElementRef element, CFStringRef attribute,
                                      CFTypeRef* value) {
  const auto& windows = script().windows;
  if (names(attribute, "AXFocusedWindow")) {
    if (!windows.hasFocusedWindow) return kAXErrorNoValue;
    *value = dataOf("window of " + textOf(element));
    return kAXErrorSuccess;
  }
  if (!names(attribute, "AXFullScreen") || windows.fullScreen == nullptr) {
    return kAXErrorAttributeUnsupported;
  }
  *value = CFRetain(windows.fullScreen);
  return kAXErrorSuccess;
}

AXError AXUIElementSetAttributeValue(AXUIElementRef element, CFStringRef attribute,
                                     CFTypeRef value) {
  const bool isPosition = names(attribute, "AXPosition");
  const char* name = names(attribute, "AXFullScreen") ? "AXFullScreen" : "another attribute";
  record(textOf(element) + ": " + (isPosition ? "AXPosition" : name) + " = " + textOf(value));
  return isPosition ? script().windows.positionError : kAXErrorFailure;
}

AXValueRef AXValueCreate(AXValueType type, const void* structure) {
  if (script().windows.valueFails || type != kAXValueTypeCGPoint) return nullptr;
  const auto point = tapdeck::recording::describe(*static_cast<const CGPoint*>(structure));
  return reinterpret_cast<AXValueRef>(dataOf(point));
}
