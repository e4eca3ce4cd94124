#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <optional>
#include <string>

#include "Engine/Value.h"
#include "Runner/MainFlutterWindow.h"

namespace tapdeck {

// Synthetic pointer events, posted at the HID tap before an operation returns. Points are in global
// top-left coordinates. What cannot be created is left out silently. Main thread only.

/// Where the pointer is.
CGPoint currentPointerPosition();

/// Moves the pointer by (dx, dy) points, positive dy downwards, carrying what is less than a point
/// to the next call; stays on the displays. Does nothing without Accessibility trust. Stops the
/// process when an accumulated distance is no 64-bit integer.
void moveMouse(MainFlutterWindow& window, double dx, double dy);

/// Moves the pointer to these fractions of a display, or of the whole desktop when none is named or
/// the name is unknown. Does nothing without Accessibility trust.
void moveMouseAbs(MainFlutterWindow& window, double x, double y,
                  const std::optional<std::string>& display);

/// Moves the pointer to the point: a drag while "mouseDown" holds a button, else a plain move.
void postAbsoluteMove(const MainFlutterWindow& window, CGPoint point);

/// One click at the pointer, counted by the user's double-click interval. Knows "right" and
/// "center"; every other name, "middle" included, clicks the left button.
void click(MainFlutterWindow& window, const std::string& button);

/// Two left clicks at the pointer with click states 1 and 2; leaves the click history alone.
void doubleClick();

/// Presses the button at the pointer and remembers it as held.
void mouseDown(MainFlutterWindow& window, const std::string& button);

/// Releases the button at the pointer; no button counts as held afterwards.
void mouseUp(MainFlutterWindow& window, const std::string& button);

/// Hides or shows the cursor and records the wish in `window`, where there still is one.
void hideCursor(MainFlutterWindow* window);
void showCursor(MainFlutterWindow* window);

/// Where the pointer is on a display: "x" and "y" as fractions and "onDisplay"; only "onDisplay"
/// false for a display that is not there.
ValueMap screenCursor(const std::optional<std::string>& display);

/// Moves the pointer without an event: to the point, or to the centre of the main screen when there
/// is none.
void debugWarp(const std::optional<CGPoint>& point);

}  // namespace tapdeck
