#include "Platform/Events.h"

#include "Platform/Linux/X11/Input/Event.h"
#include "Platform/Linux/X11/PointSpace.h"
#include "Platform/Linux/X11/Session/ServerSession.h"

namespace tapdeck::platform {
namespace {

// The height that the host assumes for the primary screen when there is none; with the same here,
// the position of the pointer, which the X server has all the same, comes out right there.
constexpr CGFloat kHeightOfNoScreen = 1080;

}  // namespace

CGPoint mouseLocation() {
  const auto pointer = x11::pointerPixel();
  if (!pointer) return CGPointMake(0, 0);
  const auto monitors = x11::monitors();
  const x11::PointSpace space(monitors, x11::pixelsPerPoint());
  const CGFloat primaryHeight =
      monitors.empty() ? kHeightOfNoScreen : CGRectGetHeight(space.rectOf(monitors.front()));
  const CGPoint fromTop = space.pointAt(pointer->x, pointer->y);
  return CGPointMake(fromTop.x, primaryHeight - fromTop.y);
}

double doubleClickInterval() {
  constexpr int32_t toolkitDefault = 400;
  auto* session = x11::session();
  if (session == nullptr) return toolkitDefault / 1000.0;
  return session->state.setting("Net/DoubleClickTime").value_or(toolkitDefault) / 1000.0;
}

CGEventRef createSystemDefinedEvent(uint32_t, int16_t subtype, int64_t data1, int64_t) {
  constexpr int16_t auxiliaryControlButtons = 8;
  constexpr int64_t pressed = 0xa00;
  if (subtype != auxiliaryControlButtons) return nullptr;
  const bool down = (data1 & 0xff00) == pressed;
  auto* event = new __CGEvent(down ? kCGEventKeyDown : kCGEventKeyUp);
  event->mediaKey = static_cast<uint32_t>(data1 >> 16);
  return event;
}

}  // namespace tapdeck::platform
