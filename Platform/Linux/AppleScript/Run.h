#pragma once

#include <string>

#include "Platform/Linux/AppleScript/AppleScript.h"
#include "Platform/Linux/AppleScript/Desktop.h"

namespace tapdeck::applescript {

/// As in AppleScript.h, on this desktop.
Result run(const std::string& source, Desktop& desktop);

}  // namespace tapdeck::applescript
