#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include <cstdint>
#include <map>
#include <optional>

namespace tapdeck::recording {

/// What the recording platform answers about other applications' windows.
struct OtherWindows {
  std::map<uint32_t, CGRect> visibleFrames;
  std::optional<int32_t> frontmostProcess = 321;
  bool hasFocusedWindow = true;
  /// What "AXFullScreen" reads as; null makes the read fail. Not owned.
  CFTypeRef fullScreen = kCFBooleanFalse;
  bool valueFails = false;
  AXError positionError = kAXErrorSuccess;
};

}  // namespace tapdeck::recording
