#include "Runner/Permissions/ScreenRecording.h"

#include <CoreGraphics/CoreGraphics.h>

#include "Platform/Workspace.h"

namespace tapdeck {

bool screenRecordingGranted() {
  return CGPreflightScreenCaptureAccess();
}

bool requestScreenRecording() {
  return CGRequestScreenCaptureAccess();
}

void openScreenRecordingSettings() {
  const auto url = platform::urlWithString(
      "x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture");
  if (url) platform::openURL(*url);
}

}  // namespace tapdeck
