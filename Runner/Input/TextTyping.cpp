#include "Runner/Input/TextTyping.h"

#include <CoreGraphics/CoreGraphics.h>

#include "Platform/Clock.h"
#include "Runner/Input/UnicodeText.h"
#include "Runner/Owned.h"

namespace tapdeck {
namespace {

constexpr uint32_t kPressMicroseconds = 5000;
// only a carrier: the receiving application reads the event's Unicode string
constexpr CGKeyCode kCarrierKey = 0;

void setUnicodeString(CGEventRef event, const std::u16string& units) {
  CGEventKeyboardSetUnicodeString(event, units.size(),
                                  reinterpret_cast<const UniChar*>(units.data()));
}

void typeCluster(CGEventSourceRef source, std::string_view cluster) {
  const Owned<CGEventRef> down(CGEventCreateKeyboardEvent(source, kCarrierKey, true));
  const Owned<CGEventRef> up(CGEventCreateKeyboardEvent(source, kCarrierKey, false));
  if (!down || !up) return;
  const std::u16string units = utf16Units(cluster);
  setUnicodeString(down.get(), units);
  setUnicodeString(up.get(), units);
  CGEventPost(kCGHIDEventTap, down.get());
  platform::sleepMicroseconds(kPressMicroseconds);
  CGEventPost(kCGHIDEventTap, up.get());
}

}  // namespace

void typeUnicodeText(std::string_view text) {
  const Owned<CGEventSourceRef> source(
      CGEventSourceCreate(kCGEventSourceStateCombinedSessionState));
  if (!source) return;
  for (const std::string_view cluster : graphemeClusters(text)) {
    typeCluster(source.get(), cluster);
  }
}

}  // namespace tapdeck
