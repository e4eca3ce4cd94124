#pragma once

// The part of Application Services that the host uses: Core Graphics and the Accessibility API.

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>
#include <sys/types.h>

extern "C" {

/// The key of AXIsProcessTrustedWithOptions whose true value prompts the user when trust is
/// missing.
extern const CFStringRef kAXTrustedCheckOptionPrompt;

/// Whether the user lets the host control the computer; never prompts. Main thread only.
Boolean AXIsProcessTrusted();
/// The same; prompts the user when trust is missing and `options` say so. Does not wait for a
/// decision.
Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options);

// ---- windows of other applications

using AXUIElementRef = const struct __AXUIElement*;
using AXValueRef = const struct __AXValue*;

enum AXError : int32_t {
  kAXErrorSuccess = 0,
  kAXErrorFailure = -25200,
  kAXErrorIllegalArgument = -25201,
  kAXErrorInvalidUIElement = -25202,
  kAXErrorCannotComplete = -25204,
  kAXErrorAttributeUnsupported = -25205,
  kAXErrorAPIDisabled = -25211,
  kAXErrorNoValue = -25212,
};

enum AXValueType : uint32_t { kAXValueTypeCGPoint = 1 };
inline constexpr uint32_t kAXValueCGPointType = kAXValueTypeCGPoint;

/// The application of this process, which need not exist.
AXUIElementRef AXUIElementCreateApplication(pid_t process);
/// An application has "AXFocusedWindow", absent (kAXErrorNoValue) unless it is the front one; a
/// window has "AXFullScreen", a boolean. `value` is the caller's own, and untouched when there is
/// an error.
AXError AXUIElementCopyAttributeValue(AXUIElementRef element, CFStringRef attribute,
                                      CFTypeRef* value);
/// A window's "AXFullScreen", and its "AXPosition": the point of its frame's top-left corner in
/// global display coordinates. Returns when the request is sent; the window manager need not
/// carry it out.
AXError AXUIElementSetAttributeValue(AXUIElementRef element, CFStringRef attribute,
                                     CFTypeRef value);
/// Copies the structure; null for another type than a point.
AXValueRef AXValueCreate(AXValueType type, const void* structure);

}  // extern "C"
