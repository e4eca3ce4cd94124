#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Platform/Workspace.h"

namespace tapdeck {

/// What lies at the URL, whatever the server's status; absent when it has not all come within
/// 3.5 s. Any thread but the main one: waits for it.
std::optional<std::vector<uint8_t>> downloadData(const platform::URL& url);

}  // namespace tapdeck
