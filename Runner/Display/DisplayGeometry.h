#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "Engine/Value.h"
#include "Platform/Screens.h"

namespace tapdeck {

// The attached displays in global top-left coordinates: points, origin at the top-left corner of
// the primary display, y growing downwards. Every operation reads the screens afresh. Main thread
// only.

/// Height of the primary screen's frame, or 1080.0 without a screen: what turns a bottom-left y
/// into a top-left one (y' = pivotHeight - y).
double pivotHeight();

/// The screen's rectangle in global top-left coordinates.
CGRect screenTopLeftFrame(const platform::Screen& screen);

/// The display record that the UI engine gets for the screen at `index` of the list.
ValueMap displayInfo(size_t index, const platform::Screen& screen);

/// The records of all screens, in the order of the list.
Value::List allDisplays();

/// The first screen whose number is written exactly so in decimal.
std::optional<platform::Screen> screenForDisplayId(const std::string& id);

/// The display's number: the main display for an absent or empty text, else the number of an
/// attached screen (decimal, a leading "+" allowed), else none.
std::optional<CGDirectDisplayID> resolveDisplayId(const std::optional<std::string>& id);

/// The point at these fractions (limited to [0, 1]) of the display, or of the whole desktop when no
/// display is given or the one given is unknown; at most one point inside the right and bottom
/// edges. None when no screen is attached.
std::optional<CGPoint> mapNormalizedPoint(const std::optional<std::string>& displayId, double nx,
                                          double ny);

/// The point itself when it lies on a display or when there is none, else the nearest point of the
/// nearest display.
CGPoint clampToDisplays(CGPoint point);

}  // namespace tapdeck
