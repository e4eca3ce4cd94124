#include "Runner/Input/Keyboard.h"

#include "Platform/Clock.h"
#include "Platform/HeldInput.h"
#include "Runner/Input/KeyTable.h"
#include "Runner/Owned.h"

namespace tapdeck {
namespace {

constexpr uint32_t kPressMicroseconds = 10000;

void postKey(CGKeyCode code, bool down, CGEventFlags flags) {
  const Owned<CGEventRef> event(CGEventCreateKeyboardEvent(nullptr, code, down));
  if (!event) return;
  CGEventSetFlags(event.get(), flags);
  CGEventPost(kCGHIDEventTap, event.get());
}

}  // namespace

void keyPress(const MainFlutterWindow& window, std::string_view key) {
  const CGKeyCode code = keyCodeForName(key);
  if (code == kNoKeyCode) return;
  postKey(code, true, window._activeModifiers);
  platform::sleepMicroseconds(kPressMicroseconds);
  postKey(code, false, window._activeModifiers);
}

void keyDown(MainFlutterWindow& window, std::string_view key) {
  if (const auto flag = modifierFlagForName(key)) window._activeModifiers |= *flag;
  const CGKeyCode code = keyCodeForName(key);
  if (code == kNoKeyCode) return;
  platform::noteKey(code, true);
  postKey(code, true, window._activeModifiers);
}

void keyUp(MainFlutterWindow& window, std::string_view key) {
  if (const auto flag = modifierFlagForName(key)) window._activeModifiers &= ~*flag;
  const CGKeyCode code = keyCodeForName(key);
  if (code == kNoKeyCode) return;
  postKey(code, false, window._activeModifiers);
  platform::noteKey(code, false);
}

}  // namespace tapdeck
