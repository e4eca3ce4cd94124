#include <ApplicationServices/ApplicationServices.h>

#include "Platform/Linux/Permissions/Permissions.h"
#include "Platform/Linux/X11/Session/ServerSession.h"

using tapdeck::permissions::Permission;

const CFStringRef kAXTrustedCheckOptionPrompt =
    CFStringCreateWithCString(nullptr, "AXTrustedCheckOptionPrompt", kCFStringEncodingUTF8);

namespace {

bool isPermitted(Permission permission) {
  const auto* session = tapdeck::x11::session();
  return session != nullptr && session->connection.isAlive() &&
         tapdeck::permissions::isGranted(permission);
}

bool wantsPrompt(CFDictionaryRef options) {
  return options != nullptr &&
         CFDictionaryGetValue(options, kAXTrustedCheckOptionPrompt) == kCFBooleanTrue;
}

}  // namespace

Boolean AXIsProcessTrusted() {
  return static_cast<Boolean>(isPermitted(Permission::control));
}

Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options) {
  const bool trusted = isPermitted(Permission::control);
  if (!trusted && wantsPrompt(options)) tapdeck::permissions::promptUser(Permission::control);
  return static_cast<Boolean>(trusted);
}

bool CGPreflightScreenCaptureAccess() {
  return isPermitted(Permission::screenCapture);
}

bool CGRequestScreenCaptureAccess() {
  const bool permitted = isPermitted(Permission::screenCapture);
  if (!permitted) tapdeck::permissions::promptUser(Permission::screenCapture);
  return permitted;
}
