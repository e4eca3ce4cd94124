#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tapdeck::platform {

// Service Management: what the system starts when the user logs in. Main thread only; nobody is
// prompted, though the system may tell the user of a new login item.

/// Whether the system has login-item services: macOS 13 and later. Where it has none, the functions
/// of a service below report a failure, and the helper's are the ones to use.
bool hasLoginItemServices();

/// SMAppServiceStatus, value by value.
enum class LoginItemStatus { notRegistered, enabled, requiresApproval, notFound };

/// SMAppService.mainAppService.status, read afresh.
LoginItemStatus mainAppServiceStatus();

/// registerAndReturnError: of the main application's service. The error's localized description, or
/// nothing when it is done.
std::optional<std::string> registerMainAppService();

/// unregisterAndReturnError: of the main application's service, answered likewise.
std::optional<std::string> unregisterMainAppService();

/// unregisterAndReturnError: of the login-item service of this helper, answered likewise.
std::optional<std::string> unregisterLoginItemService(const std::string& identifier);

/// SMLoginItemSetEnabled for the helper of this bundle identifier. False when it cannot be done.
bool setLoginItemEnabled(const std::string& identifier, bool enabled);

/// One job of launchd; a key that is missing or of another kind is absent.
struct LaunchdJob {
  /// "Label", a string.
  std::optional<std::string> label;
  /// "OnDemand", a boolean.
  std::optional<bool> onDemand;
};

/// SMCopyAllJobDictionaries of the user's domain, in the system's order; absent when the system has
/// none or anything but an array of dictionaries.
std::optional<std::vector<LaunchdJob>> userLaunchdJobs();

}  // namespace tapdeck::platform
