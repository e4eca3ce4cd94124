#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "Engine/MethodChannel.h"

namespace tapdeck {

namespace platform {
class OverlayWindow;
class RepeatingTimer;
}  // namespace platform

/// The stored state of the one main window: everything that the control channel's methods keep
/// from one call to the next. Held by one shared pointer; channels, observers and background jobs
/// hold it weakly. Its fields are touched on the main thread only.
class MainFlutterWindow {
 public:
  MainFlutterWindow() = default;
  MainFlutterWindow(const MainFlutterWindow&) = delete;
  MainFlutterWindow& operator=(const MainFlutterWindow&) = delete;
  /// Lets every field go but `_prevFrame`, which only the reset of screen capture frees.
  ~MainFlutterWindow();

  /// What the window does each time it becomes the key window or is made key and ordered front:
  /// the cursor shows again, whatever the UI engine asked before.
  void showCursorOnBecomingKey();

  /// Sub-point remainder of relative pointer movement, strictly between -1 and 1.
  double _fractionalX = 0;
  double _fractionalY = 0;
  /// The UI engine's last wish about the cursor. Written only: the cursor is never hidden from it.
  bool _shouldHideCursor = false;
  /// Name of the button that "mouseDown" holds; absent when none is held.
  std::optional<std::string> _heldMouseButton;
  /// Accessibility trust as last learnt.
  bool _isAccessibilityTrusted = false;
  /// The system's Accessibility prompt has been raised in this process.
  bool _accessibilityPromptShown = false;
  /// The laser dot and the timer that keeps it on the pointer, while it is shown.
  std::shared_ptr<platform::OverlayWindow> _laserWindow;
  std::shared_ptr<platform::RepeatingTimer> _laserTimer;
  /// The control channel, from waking on.
  std::unique_ptr<MethodChannel> _controlChannel;
  /// Pixels of the last frame sent, `_prevFrameHeight` rows of `_prevFrameStride` bytes each.
  uint8_t* _prevFrame = nullptr;
  int64_t _prevFrameBytes = 0;
  int64_t _prevFrameStride = 0;
  int64_t _prevFrameHeight = 0;
  /// The platform's version of pixels that are like `_prevFrame`; absent where it has none.
  std::optional<uint64_t> _prevFrameVersion;
  /// System uptime in seconds, button and number of the last "click".
  double _lastClickTime = 0;
  std::string _lastClickButton;
  int64_t _clickCount = 0;
  /// Flags of the modifier keys that "keyDown" holds.
  CGEventFlags _activeModifiers = {};
};

}  // namespace tapdeck
