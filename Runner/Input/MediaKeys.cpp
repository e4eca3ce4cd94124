#include "Runner/Input/MediaKeys.h"

#include <cstdint>

#include "Platform/Clock.h"
#include "Platform/Events.h"
#include "Runner/Owned.h"

namespace tapdeck {
namespace {

constexpr int16_t kAuxiliaryControlButtons = 8;
// the key's state stands in bits 8 to 15 of data1 and, just so, in the modifier flags
constexpr uint32_t kPressed = 0xa00;
constexpr uint32_t kReleased = 0xb00;
constexpr uint32_t kPressMicroseconds = 10000;

void post(MediaKey key, uint32_t state) {
  const int64_t data1 = (static_cast<int64_t>(key) << 16) | state;
  const Owned<CGEventRef> event(
      platform::createSystemDefinedEvent(state, kAuxiliaryControlButtons, data1, -1));
  if (event) CGEventPost(kCGHIDEventTap, event.get());
}

}  // namespace

void postMediaKey(MediaKey key) {
  post(key, kPressed);
  platform::sleepMicroseconds(kPressMicroseconds);
  post(key, kReleased);
}

}  // namespace tapdeck
