#pragma once

#include <string>

namespace tapdeck {

/// The icon of the application with this bundle identifier, running or not: a PNG image of 64 by 64
/// pixels in base64. Empty when there is none. Main thread only.
std::string applicationIcon(const std::string& bundleIdentifier);

}  // namespace tapdeck
