#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <optional>
#include <string_view>

namespace tapdeck {

/// What `keyCodeForName` answers for a name that no key bears.
inline constexpr CGKeyCode kNoKeyCode = 65535;

/// The virtual key code (kVK_) of the key of that name, whatever its case, or `kNoKeyCode`.
CGKeyCode keyCodeForName(std::string_view name);

/// The event flag of the modifier of that name, whatever its case; none for every other name.
std::optional<CGEventFlags> modifierFlagForName(std::string_view name);

}  // namespace tapdeck
