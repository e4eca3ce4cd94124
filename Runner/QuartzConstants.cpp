// The numbers behind the names that the host gives to Quartz: what it was written against, held
// against the headers of whichever platform it is built on. Nothing of it is left in the program.

#include <ApplicationServices/ApplicationServices.h>
#include <CoreGraphics/CoreGraphics.h>

static_assert(kCGHIDEventTap == 0);
static_assert(kCGEventSourceStateCombinedSessionState == 0);

static_assert(kCGEventNull == 0);
static_assert(kCGEventLeftMouseDown == 1 && kCGEventLeftMouseUp == 2);
static_assert(kCGEventRightMouseDown == 3 && kCGEventRightMouseUp == 4);
static_assert(kCGEventMouseMoved == 5);
static_assert(kCGEventLeftMouseDragged == 6 && kCGEventRightMouseDragged == 7);
static_assert(kCGEventKeyDown == 10 && kCGEventKeyUp == 11);
static_assert(kCGEventScrollWheel == 22);
static_assert(kCGEventOtherMouseDown == 25 && kCGEventOtherMouseUp == 26);
static_assert(kCGEventOtherMouseDragged == 27);

static_assert(kCGMouseButtonLeft == 0 && kCGMouseButtonRight == 1 && kCGMouseButtonCenter == 2);
static_assert(kCGMouseEventClickState == 1);
static_assert(kCGScrollEventUnitPixel == 0);

static_assert(kCGEventFlagMaskAlphaShift == 0x10000);
static_assert(kCGEventFlagMaskShift == 0x20000);
static_assert(kCGEventFlagMaskControl == 0x40000);
static_assert(kCGEventFlagMaskAlternate == 0x80000);
static_assert(kCGEventFlagMaskCommand == 0x100000);

// blue, green, red and a byte unused, in memory order on a little-endian processor
static_assert((kCGBitmapByteOrder32Little | static_cast<uint32_t>(kCGImageAlphaNoneSkipFirst)) ==
              0x2006);
static_assert(kCGInterpolationLow == 2);

static_assert(sizeof(CGFloat) == 8 && sizeof(CGPoint) == 16 && sizeof(CGRect) == 32);
static_assert(sizeof(CGKeyCode) == 2 && sizeof(UniChar) == 2 && sizeof(CGDirectDisplayID) == 4);
