#include "Platform/Linux/X11/Input/EventPoster.h"

#include <xcb/xtest.h>

#include <algorithm>
#include <cstdlib>

#include "Platform/Linux/Permissions/Permissions.h"
#include "Platform/Linux/X11/Input/KeyGrabs.h"
#include "Platform/Linux/X11/Keyboard/KeyPlan.h"
#include "Platform/Linux/X11/Keyboard/TextPlan.h"

namespace tapdeck::x11 {
namespace {

// the core protocol's buttons
constexpr uint8_t kLeft = 1;
constexpr uint8_t kMiddle = 2;
constexpr uint8_t kRight = 3;
constexpr uint8_t kWheelUp = 4;
constexpr uint8_t kWheelDown = 5;
constexpr uint8_t kWheelLeft = 6;
constexpr uint8_t kWheelRight = 7;
// by custom the first button after the wheel's, which Quartz numbers 3
constexpr uint8_t kBack = 8;

uint8_t serverButton(uint32_t quartzButton) {
  switch (quartzButton) {
    case kCGMouseButtonLeft:
      return kLeft;
    case kCGMouseButtonRight:
      return kRight;
    case kCGMouseButtonCenter:
      return kMiddle;
    default:
      return static_cast<uint8_t>(std::min<uint32_t>(quartzButton, 31) - 3 + kBack);
  }
}

bool isRelease(const __CGEvent& event) {
  return event.type == kCGEventLeftMouseUp || event.type == kCGEventRightMouseUp ||
         event.type == kCGEventOtherMouseUp;
}

}  // namespace

EventPoster::EventPoster(Connection& connection, ServerState& server)
    : _connection(connection), _server(server), _queue(connection) {
  // some screen lockers and games grab the whole server
  xcb_test_grab_control(connection.get(), 1);
  connection.flush();
}

void EventPoster::post(const __CGEvent& event) {
  const bool isPermitted = permissions::isGranted(permissions::Permission::control);
  if (event.type == kCGEventKeyDown || event.type == kCGEventKeyUp) {
    postKey(event, isPermitted);
  } else if (isPermitted) {
    carryOut(event);
  } else if (isRelease(event)) {
    release(serverButton(event.button), /*ownOnly=*/true);
  }
}

void EventPoster::postKey(const __CGEvent& event, bool isPermitted) {
  const bool down = event.type == kCGEventKeyDown;
  if (!event.text.empty()) {
    // Pressed and released at once, so that no slow moment makes the key repeat; a text of several
    // characters is several keys. Nothing is left for the release.
    if (down && isPermitted) _queue.add(TextStep{keysymsForText(event.text)});
    return;
  }
  const auto key = event.mediaKey != 0 ? mediaKeyFor(event.mediaKey) : usKeyFor(event.keyCode);
  if (!key) return;
  if (event.mediaKey != 0 && isTaken(event, *key, isPermitted)) return;
  if (!isPermitted && down) return;
  _queue.add(KeyStep{*key, down, event.flags, /*ownOnly=*/!isPermitted});
}

bool EventPoster::isTaken(const __CGEvent& event, const UsKey& key, bool isPermitted) {
  const bool wasTaken = _takenMediaKeys.erase(event.mediaKey) > 0;
  if (event.type == kCGEventKeyUp) return wasTaken;
  if (!isPermitted || !_takeMediaKey || isGrabbed(key) || !_takeMediaKey(event.mediaKey)) {
    return false;
  }
  _takenMediaKeys.insert(event.mediaKey);
  return true;
}

bool EventPoster::isGrabbed(const UsKey& key) const {
  const auto map = fetchKeymap(_connection);
  // a key that the layout lacks cannot be grabbed by its keysym
  const auto place = map ? realKeyFor(key, *map, 0) : std::nullopt;
  return place && isKeyGrabbed(_connection, place->code);
}

void EventPoster::carryOut(const __CGEvent& event) {
  switch (event.type) {
    case kCGEventMouseMoved:
    case kCGEventLeftMouseDragged:
    case kCGEventRightMouseDragged:
    case kCGEventOtherMouseDragged:
      move(event.location);
      break;
    case kCGEventLeftMouseDown:
    case kCGEventRightMouseDown:
    case kCGEventOtherMouseDown:
      if (move(event.location)) press(serverButton(event.button));
      break;
    case kCGEventLeftMouseUp:
    case kCGEventRightMouseUp:
    case kCGEventOtherMouseUp:
      move(event.location);
      release(serverButton(event.button), /*ownOnly=*/false);
      break;
    case kCGEventScrollWheel:
      scroll(event);
      break;
    default:
      break;
  }
}

bool EventPoster::move(CGPoint point) {
  const auto pixel = _server.pointSpace().pixelAt(point);
  if (pixel) _queue.add(MotionStep{*pixel});
  return pixel.has_value();
}

void EventPoster::press(uint8_t button) {
  const auto physical = _server.physicalButton(button);
  if (physical) _queue.add(ButtonStep{button, physical, true});
}

void EventPoster::release(uint8_t button, bool ownOnly) {
  _queue.add(ButtonStep{button, _server.physicalButton(button), false, ownOnly});
}

void EventPoster::scroll(const __CGEvent& event) {
  turnWheel(_vertical.addPixels(event.verticalScroll), kWheelUp, kWheelDown);
  turnWheel(_horizontal.addPixels(event.horizontalScroll), kWheelLeft, kWheelRight);
}

void EventPoster::turnWheel(int steps, uint8_t positive, uint8_t negative) {
  if (steps == 0) return;
  const auto physical = _server.physicalButton(steps > 0 ? positive : negative);
  if (physical) _queue.add(WheelStep{*physical, std::abs(steps)});
}

}  // namespace tapdeck::x11
