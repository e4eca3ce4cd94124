#pragma once

// The part of Core Graphics that the host uses, under its documented names, values and ownership
// rules. Points and rectangles are in global display coordinates: points, origin at the top-left
// corner of the primary display, y growing downwards. Main thread only.

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <cstdint>

extern "C" {

using CGFloat = double;

struct CGPoint {
  CGFloat x;
  CGFloat y;
};

struct CGSize {
  CGFloat width;
  CGFloat height;
};

struct CGRect {
  CGPoint origin;
  CGSize size;
};

inline CGPoint CGPointMake(CGFloat x, CGFloat y) {
  return {x, y};
}
inline CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
  return {{x, y}, {width, height}};
}
CGFloat CGRectGetMinX(CGRect rect);
CGFloat CGRectGetMidX(CGRect rect);
CGFloat CGRectGetMaxX(CGRect rect);
CGFloat CGRectGetMinY(CGRect rect);
CGFloat CGRectGetMidY(CGRect rect);
CGFloat CGRectGetMaxY(CGRect rect);
CGFloat CGRectGetWidth(CGRect rect);
CGFloat CGRectGetHeight(CGRect rect);
/// Left and top edges inclusive, right and bottom edges exclusive.
bool CGRectContainsPoint(CGRect rect, CGPoint point);
/// The smallest rectangle that holds both; a null rectangle counts as nothing.
CGRect CGRectUnion(CGRect a, CGRect b);
bool CGRectIsNull(CGRect rect);
/// The null rectangle, as of an empty intersection: infinite origin, no size.
extern const CGRect CGRectNull;

enum CGError : int32_t {
  kCGErrorSuccess = 0,
  kCGErrorFailure = 1000,
  kCGErrorIllegalArgument = 1001
};

// ---- displays

using CGDirectDisplayID = uint32_t;
inline constexpr CGDirectDisplayID kCGNullDirectDisplay = 0;

CGDirectDisplayID CGMainDisplayID();
/// An empty rectangle at the origin for a display that is not attached.
CGRect CGDisplayBounds(CGDirectDisplayID display);
/// Hides the cursor on all displays. Hides are counted: as many shows bring it back, and further
/// ones do nothing.
CGError CGDisplayHideCursor(CGDirectDisplayID display);
CGError CGDisplayShowCursor(CGDirectDisplayID display);
CGError CGWarpMouseCursorPosition(CGPoint position);
/// The level above every other window's, a full-screen one's included. Windows here have two
/// levels: this, and the window manager's own.
int32_t CGShieldingWindowLevel();

// ---- images

using CGColorSpaceRef = struct CGColorSpace*;
using CGImageRef = struct CGImage*;
using CGContextRef = struct CGContext*;
using CGBitmapInfo = uint32_t;

enum CGImageAlphaInfo : uint32_t { kCGImageAlphaNoneSkipFirst = 6 };
enum : CGBitmapInfo { kCGBitmapByteOrder32Little = 2 << 12 };
enum CGInterpolationQuality : int32_t {
  kCGInterpolationDefault = 0,
  kCGInterpolationNone = 1,
  kCGInterpolationLow = 2,
};

/// What the display shows now, the cursor left out, in the display's own pixels. Null when the
/// display is not attached, the user does not let the host capture the screen, or there is no
/// memory for it. Here it may be the very image of the last call when nothing was painted since,
/// and the display's pixels must be those of an X screen of depth 24 or 30.
CGImageRef CGDisplayCreateImage(CGDirectDisplayID display);
/// 0 for null, as the next one.
size_t CGImageGetWidth(CGImageRef image);
size_t CGImageGetHeight(CGImageRef image);

CGColorSpaceRef CGColorSpaceCreateDeviceRGB();

/// Pixels to draw on, all zero. Here `data` must be null (the context owns its memory) and the
/// format 8 bits per component, kCGBitmapByteOrder32Little | kCGImageAlphaNoneSkipFirst; a
/// `bytesPerRow` of 0 lets the context choose. Null for any other format, no size, or no memory.
CGContextRef CGBitmapContextCreate(void* data, size_t width, size_t height, size_t bitsPerComponent,
                                   size_t bytesPerRow, CGColorSpaceRef space, uint32_t bitmapInfo);
/// The context's memory, null for a null context or without memory. Here it is only to be read, for
/// images may share it, and valid until something is drawn on the context or the context ends.
void* CGBitmapContextGetData(CGContextRef context);
size_t CGBitmapContextGetBytesPerRow(CGContextRef context);
/// A snapshot of the context's pixels; null for a null context or without memory.
CGImageRef CGBitmapContextCreateImage(CGContextRef context);
void CGContextSetInterpolationQuality(CGContextRef context, CGInterpolationQuality quality);
/// Draws the whole image into `rect` of the context; here the rectangle is the whole context, each
/// pixel the mean of what it covers at any quality, and the byte that is no colour 255.
void CGContextDrawImage(CGContextRef context, CGRect rect, CGImageRef image);

// ---- permissions

/// Whether the screen may be captured; never prompts the user.
bool CGPreflightScreenCaptureAccess();
/// The same, and prompts the user when it may not.
bool CGRequestScreenCaptureAccess();

// ---- events

using CGEventRef = struct __CGEvent*;
using CGEventSourceRef = struct __CGEventSource*;
using CGKeyCode = uint16_t;
using CGEventFlags = uint64_t;

enum : CGEventFlags {
  kCGEventFlagMaskAlphaShift = 0x00010000,
  kCGEventFlagMaskShift = 0x00020000,
  kCGEventFlagMaskControl = 0x00040000,
  kCGEventFlagMaskAlternate = 0x00080000,
  kCGEventFlagMaskCommand = 0x00100000,
};

enum CGEventSourceStateID : int32_t {
  kCGEventSourceStatePrivate = -1,
  kCGEventSourceStateCombinedSessionState = 0,
  kCGEventSourceStateHIDSystemState = 1,
};

enum CGEventTapLocation : uint32_t { kCGHIDEventTap = 0 };

enum CGEventType : uint32_t {
  kCGEventNull = 0,
  kCGEventLeftMouseDown = 1,
  kCGEventLeftMouseUp = 2,
  kCGEventRightMouseDown = 3,
  kCGEventRightMouseUp = 4,
  kCGEventMouseMoved = 5,
  kCGEventLeftMouseDragged = 6,
  kCGEventRightMouseDragged = 7,
  kCGEventKeyDown = 10,
  kCGEventKeyUp = 11,
  kCGEventScrollWheel = 22,
  kCGEventOtherMouseDown = 25,
  kCGEventOtherMouseUp = 26,
  kCGEventOtherMouseDragged = 27,
};

enum CGMouseButton : uint32_t {
  kCGMouseButtonLeft = 0,
  kCGMouseButtonRight = 1,
  kCGMouseButtonCenter = 2,
};

enum CGEventField : uint32_t { kCGMouseEventClickState = 1 };

enum CGScrollEventUnit : uint32_t { kCGScrollEventUnitPixel = 0 };

CGEventSourceRef CGEventSourceCreate(CGEventSourceStateID state);

/// An event of type null at the pointer's present location.
CGEventRef CGEventCreate(CGEventSourceRef source);
CGEventRef CGEventCreateMouseEvent(CGEventSourceRef source, CGEventType type, CGPoint position,
                                   CGMouseButton button);
CGEventRef CGEventCreateKeyboardEvent(CGEventSourceRef source, CGKeyCode key, bool keyDown);
/// Wheel 1 is vertical, wheel 2 horizontal; positive scrolls towards the top or the left.
CGEventRef CGEventCreateScrollWheelEvent2(CGEventSourceRef source, CGScrollEventUnit units,
                                          uint32_t wheelCount, int32_t wheel1, int32_t wheel2,
                                          int32_t wheel3);
CGPoint CGEventGetLocation(CGEventRef event);
void CGEventSetFlags(CGEventRef event, CGEventFlags flags);
void CGEventSetIntegerValueField(CGEventRef event, CGEventField field, int64_t value);
void CGEventKeyboardSetUnicodeString(CGEventRef event, UniCharCount length, const UniChar* units);
/// Carries the event out; dropped silently while the user does not let the host control the
/// computer.
void CGEventPost(CGEventTapLocation tap, CGEventRef event);

}  // extern "C"
