#include "Platform/HeldInput.h"

namespace tapdeck::platform {

// what posts the events knows itself what it holds at the X server

void noteKey(CGKeyCode, bool) {}
void noteButton(CGMouseButton, CGEventType, bool) {}

}  // namespace tapdeck::platform
