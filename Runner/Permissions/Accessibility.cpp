#include "Runner/Permissions/Accessibility.h"

#include <ApplicationServices/ApplicationServices.h>

#include "Platform/ProcessInfo.h"
#include "Platform/Workspace.h"
#include "Runner/Diagnostics.h"
#include "Runner/Owned.h"

namespace tapdeck {
namespace {

constexpr const char* kAccessibilityPane =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";

bool isTrusted() {
  return AXIsProcessTrusted() != 0;
}

bool promptForTrust() {
  const void* keys[] = {kAXTrustedCheckOptionPrompt};
  const void* values[] = {kCFBooleanTrue};
  const Owned<CFDictionaryRef> options(CFDictionaryCreate(
      nullptr, keys, values, 1, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
  return AXIsProcessTrustedWithOptions(options.get()) != 0;
}

}  // namespace

bool accessibilityGate(MainFlutterWindow& window) {
  if (window._isAccessibilityTrusted) return true;
  if (isTrusted()) {
    window._isAccessibilityTrusted = true;
    return true;
  }
  if (!window._accessibilityPromptShown) {
    window._accessibilityPromptShown = true;
    promptForTrust();
    printLine("❌ App not trusted for Accessibility — prompting user to grant permission");
  }
  return false;
}

bool refreshAccessibilityTrust(MainFlutterWindow& window) {
  window._isAccessibilityTrusted = isTrusted();
  return window._isAccessibilityTrusted;
}

bool requestAccessibilityPermission(MainFlutterWindow& window) {
  if (isTrusted()) {
    window._isAccessibilityTrusted = true;
    return true;
  }
  window._accessibilityPromptShown = true;
  window._isAccessibilityTrusted = promptForTrust();
  return window._isAccessibilityTrusted;
}

void openAccessibilitySettings() {
  const auto url = platform::urlWithString(kAccessibilityPane);
  if (!url) platform::stopProcess(std::string(kAccessibilityPane) + " is no URL");
  platform::openURL(*url);
}

}  // namespace tapdeck
