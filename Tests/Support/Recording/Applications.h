#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Engine/Value.h"
#include "Platform/Applications.h"

namespace tapdeck::recording {

/// What the recording platform answers about applications. A test sets it before it calls, and sets
/// it back.
struct ApplicationsScript {
  std::vector<platform::RunningApplication> running;
  std::map<std::string, ValueMap> propertyLists;
  std::map<std::string, std::vector<std::string>> folders;
  /// Bundle identifiers by the bundle's path.
  std::map<std::string, std::string> bundles;
  bool iconFails = false;
  bool bitmapFails = false;
  /// What every bitmap is encoded as; absent makes it fail.
  std::optional<std::vector<uint8_t>> png = std::vector<uint8_t>{0x89, 'P', 'N', 'G'};
};

ApplicationsScript& applications();

}  // namespace tapdeck::recording
