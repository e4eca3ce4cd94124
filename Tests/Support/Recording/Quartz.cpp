// The C frameworks, recorded. An event handed out holds its record's number.

#include <ApplicationServices/ApplicationServices.h>

#include <cstdio>
#include <string>
#include <vector>

#include "Tests/Support/Recording/Objects.h"
#include "Tests/Support/Recording/Recording.h"

using tapdeck::recording::contentOf;
using tapdeck::recording::describe;
using tapdeck::recording::makeObject;
using tapdeck::recording::record;
using tapdeck::recording::script;

namespace {

struct Record {
  CGEventType type = kCGEventNull;
  std::string description;
  CGPoint location = {0, 0};
  std::string clickState;
  std::string flags;
  std::string text;
};

std::vector<Record>& records() {
  static std::vector<Record> all;
  return all;
}

Record& recordOf(CGEventRef event) {
  return records().at(static_cast<size_t>(contentOf<int64_t>(event)));
}

CGEventRef makeEvent(CGEventType type, CGPoint location, const std::string& description) {
  if (script().failingEvents.contains(type)) return nullptr;
  records().push_back({type, description, location, "", "", ""});
  return makeObject<CGEventRef>(static_cast<int64_t>(records().size()) - 1);
}

std::string describeSource(CGEventSourceRef source) {
  return source == nullptr ? "none" : std::to_string(contentOf<CGEventSourceStateID>(source));
}

}  // namespace

void tapdeck::recording::forgetEvents() {
  records().clear();
}

CGEventRef tapdeck::recording::makeDescribedEvent(const std::string& description) {
  return makeEvent(kCGEventNull, {0, 0}, description);
}

CGEventSourceRef CGEventSourceCreate(CGEventSourceStateID state) {
  return script().sourceFails ? nullptr : makeObject<CGEventSourceRef>(state);
}

CGEventRef CGEventCreate(CGEventSourceRef) {
  if (!script().eventLocation) return nullptr;
  return makeEvent(kCGEventNull, *script().eventLocation, "null");
}

CGEventRef CGEventCreateMouseEvent(CGEventSourceRef source, CGEventType type, CGPoint position,
                                   CGMouseButton button) {
  return makeEvent(type, position,
                   "mouse " + std::to_string(type) + " at " + describe(position) + " button " +
                       std::to_string(button) + " source " + describeSource(source));
}

CGEventRef CGEventCreateKeyboardEvent(CGEventSourceRef source, CGKeyCode key, bool keyDown) {
  return makeEvent(keyDown ? kCGEventKeyDown : kCGEventKeyUp, {0, 0},
                   "key " + std::to_string(key) + (keyDown ? " down" : " up") + " source " +
                       describeSource(source));
}

CGEventRef CGEventCreateScrollWheelEvent2(CGEventSourceRef source, CGScrollEventUnit units,
                                          uint32_t wheelCount, int32_t wheel1, int32_t wheel2,
                                          int32_t wheel3) {
  return makeEvent(kCGEventScrollWheel, {0, 0},
                   "scroll unit " + std::to_string(units) + " count " + std::to_string(wheelCount) +
                       " wheels " + std::to_string(wheel1) + " " + std::to_string(wheel2) + " " +
                       std::to_string(wheel3) + " source " + describeSource(source));
}

CGPoint CGEventGetLocation(CGEventRef event) {
  return recordOf(event).location;
}

void CGEventSetFlags(CGEventRef event, CGEventFlags flags) {
  char text[32];
  std::snprintf(text, sizeof text, " flags 0x%llx", static_cast<unsigned long long>(flags));
  recordOf(event).flags = text;
}

void CGEventSetIntegerValueField(CGEventRef event, CGEventField field, int64_t value) {
  recordOf(event).clickState = " field " + std::to_string(field) + " = " + std::to_string(value);
}

void CGEventKeyboardSetUnicodeString(CGEventRef event, UniCharCount length, const UniChar* units) {
  std::string text = " text";
  for (UniCharCount i = 0; i < length; ++i) {
    char unit[8];
    std::snprintf(unit, sizeof unit, " %04x", units[i]);
    text += unit;
  }
  recordOf(event).text = text;
}

void CGEventPost(CGEventTapLocation tap, CGEventRef event) {
  const Record& posted = recordOf(event);
  record("post " + posted.description + posted.clickState + posted.flags + posted.text +
         (tap == kCGHIDEventTap ? "" : " at tap " + std::to_string(tap)));
}

CGDirectDisplayID CGMainDisplayID() {
  return script().mainDisplay;
}

CGRect CGDisplayBounds(CGDirectDisplayID display) {
  return tapdeck::recording::at(script().bounds, display).value_or(CGRectMake(0, 0, 0, 0));
}

CGError CGDisplayHideCursor(CGDirectDisplayID display) {
  record("hide cursor on " + std::to_string(display));
  return kCGErrorSuccess;
}

CGError CGDisplayShowCursor(CGDirectDisplayID display) {
  record("show cursor on " + std::to_string(display));
  return kCGErrorSuccess;
}

CGError CGWarpMouseCursorPosition(CGPoint position) {
  record("warp to " + describe(position));
  return kCGErrorSuccess;
}

int32_t CGShieldingWindowLevel() {
  return 2147483628;
}

bool CGPreflightScreenCaptureAccess() {
  record("preflight screen capture");
  return script().captureGranted;
}

bool CGRequestScreenCaptureAccess() {
  record("request screen capture");
  return script().captureGrantedOnRequest;
}

Boolean AXIsProcessTrusted() {
  record("ask for trust");
  return static_cast<Boolean>(script().trusted);
}

Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options) {
  const bool prompts = options != nullptr && CFDictionaryGetCount(options) == 1 &&
                       CFDictionaryGetValue(options, kAXTrustedCheckOptionPrompt) == kCFBooleanTrue;
  record(prompts ? "prompt for trust" : "ask for trust with other options");
  return static_cast<Boolean>(script().trustedOnPrompt);
}
