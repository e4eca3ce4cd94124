#include "Platform/Events.h"

#import <AppKit/AppKit.h>

namespace tapdeck::platform {

CGPoint mouseLocation() {
  return NSEvent.mouseLocation;
}

double doubleClickInterval() {
  return NSEvent.doubleClickInterval;
}

CGEventRef createSystemDefinedEvent(uint32_t modifierFlags, int16_t subtype, int64_t data1,
                                    int64_t data2) {
  NSEvent* event = [NSEvent otherEventWithType:NSEventTypeSystemDefined
                                      location:NSZeroPoint
                                 modifierFlags:modifierFlags
                                     timestamp:0
                                  windowNumber:0
                                       context:nil
                                       subtype:subtype
                                         data1:static_cast<NSInteger>(data1)
                                         data2:static_cast<NSInteger>(data2)];
  // the event owns its Quartz event, which the caller is to own
  CGEventRef quartzEvent = event.CGEvent;
  return quartzEvent != nullptr ? static_cast<CGEventRef>(const_cast<void*>(CFRetain(quartzEvent)))
                                : nullptr;
}

}  // namespace tapdeck::platform
