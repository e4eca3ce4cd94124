#include "Platform/Events.h"

#import <AppKit/AppKit.h>

namespace tapdeck::platform {

CGPoint mouseLocation() { return NSEvent.mouseLocation; }

double doubleClickInterval() { return NSEvent.doubleClickInterval; }

}  // namespace tapdeck::platform
