#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Engine/Value.h"
#include "Runner/MainFlutterWindow.h"

namespace tapdeck {

/// What the UI engine asks of one frame.
struct CaptureRequest {
  /// The display's identifier; absent or empty for the main display.
  std::optional<std::string> display;
  /// The widest that the frame may be, in pixels; taken as 320 to 1920.
  int64_t maxWidth = 1280;
  /// Per cent; taken as 20 to 95.
  int64_t quality = 60;
  /// Sends the frame even if it is like the last one sent.
  bool force = false;
};

/// Takes a picture of the display, scaled down to the width asked for, and answers with the map
/// that goes to the UI engine: {"jpeg", "w", "h"}, {"unchanged": true} when the picture is like the
/// last one sent, or {"error"} with "no_display", "capture_failed" or "encode_failed". What is sent
/// is kept in the window's `_prevFrame` fields. Main thread only.
ValueMap captureScreen(MainFlutterWindow& window, const CaptureRequest& request);

/// Forgets the last frame sent and frees its memory, so that the next one is sent whatever it
/// shows. Main thread only.
void resetScreenCapture(MainFlutterWindow& window);

}  // namespace tapdeck
