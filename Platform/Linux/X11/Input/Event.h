#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <string>

#include "Platform/Linux/CoreFoundation/Object.h"

/// What a CGEventRef refers to: an event as its maker described it, nothing done yet.
struct __CGEvent final : tapdeck::cf::Object {
  explicit __CGEvent(CGEventType kind) : type(kind) {}

  const CGEventType type;
  CGPoint location = {0, 0};
  CGEventFlags flags = 0;
  /// kCGMouseEventClickState. X has no place for it: applications count clicks by the server's
  /// time stamps.
  int64_t clickState = 0;
  uint32_t button = kCGMouseButtonLeft;
  int32_t verticalScroll = 0;
  int32_t horizontalScroll = 0;
  CGKeyCode keyCode = 0;
  /// UTF-16; when it is not empty, the key event types this text and its key code is ignored.
  std::u16string text;
  /// NX_KEYTYPE_ of a system-defined event.
  uint32_t mediaKey = 0;
};
