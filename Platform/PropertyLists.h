#pragma once

#include <optional>
#include <string>

#include "Engine/Value.h"

namespace tapdeck::platform {

/// NSDictionary dictionaryWithContentsOfFile: the property list in the file. Dates, data and what
/// else no value expresses are null. Absent when the file cannot be read or holds no dictionary.
/// Main thread only.
std::optional<ValueMap> dictionaryFromFile(const std::string& path);

}  // namespace tapdeck::platform
