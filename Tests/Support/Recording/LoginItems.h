#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Platform/LoginItems.h"

namespace tapdeck::recording {

/// What the recording platform answers about login items, and what it remembers of them.
struct LoginItems {
  bool hasServices = true;
  platform::LoginItemStatus status = platform::LoginItemStatus::notRegistered;
  /// What each operation fails with; absent lets it succeed and changes the status.
  std::optional<std::string> registrationError;
  std::optional<std::string> unregistrationError;
  std::optional<std::vector<platform::LaunchdJob>> jobs;
  std::string bundleIdentifier = "com.example.app";
  /// A user who has started the application before.
  std::map<std::string, bool> userDefaults = {{"LaunchAtLogin__hasMigrated", true}};
};

}  // namespace tapdeck::recording
