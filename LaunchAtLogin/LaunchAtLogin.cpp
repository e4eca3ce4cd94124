#include "LaunchAtLogin/LaunchAtLogin.h"

#include <algorithm>

#include "Platform/Log.h"
#include "Platform/LoginItems.h"
#include "Platform/MainBundle.h"
#include "Platform/UserDefaults.h"

namespace tapdeck {
namespace {

constexpr const char* kHasMigrated = "LaunchAtLogin__hasMigrated";
constexpr const char* kLogSubsystem = "com.quarrow.LaunchAtLogin";
constexpr const char* kLogCategory = "main";

void setServiceEnabled(bool enabled) {
  if (enabled && platform::mainAppServiceStatus() == platform::LoginItemStatus::enabled) {
    // so that what is registered is always fresh; a failure shows in the registration, if at all
    platform::unregisterMainAppService();
  }
  const auto failure =
      enabled ? platform::registerMainAppService() : platform::unregisterMainAppService();
  if (!failure) return;
  platform::logError(kLogSubsystem, kLogCategory,
                     std::string("Failed to ") + (enabled ? "enable" : "disable") +
                         " launch at login: " + *failure);
}

}  // namespace

LaunchAtLogin& LaunchAtLogin::shared() {
  static LaunchAtLogin instance;
  return instance;
}

bool LaunchAtLogin::isEnabled() {
  if (!platform::hasLoginItemServices()) return helperJobIsEnabled();
  return platform::mainAppServiceStatus() == platform::LoginItemStatus::enabled;
}

void LaunchAtLogin::setEnabled(bool enabled) {
  _objectWillChange.send();
  _keyValueNotices.send(KeyValueNotice::willChange);
  if (platform::hasLoginItemServices()) {
    setServiceEnabled(enabled);
  } else {
    platform::setLoginItemEnabled(helperIdentifier(), enabled);
  }
  _keyValueNotices.send(KeyValueNotice::didChange);
  publisher().send(enabled);
}

void LaunchAtLogin::migrateIfNeeded() {
  if (!platform::hasLoginItemServices() || platform::userDefaultsBool(kHasMigrated)) return;
  // first, so that a migration that fails is not tried again at every start
  platform::setUserDefaultsBool(kHasMigrated, true);
  if (helperJobIsEnabled()) setServiceEnabled(true);
  platform::setLoginItemEnabled(helperIdentifier(), false);
  platform::unregisterLoginItemService(helperIdentifier());
}

CurrentValuePublisher<bool>& LaunchAtLogin::publisher() {
  if (!_publisher) _publisher.emplace(isEnabled());
  return *_publisher;
}

const std::string& LaunchAtLogin::helperIdentifier() {
  if (!_helperIdentifier) {
    _helperIdentifier = platform::mainBundleIdentifier() + "-LaunchAtLoginHelper";
  }
  return *_helperIdentifier;
}

bool LaunchAtLogin::helperJobIsEnabled() {
  const auto jobs = platform::userLaunchdJobs();
  if (!jobs) return false;
  const auto job = std::find_if(jobs->begin(), jobs->end(), [this](const auto& candidate) {
    return candidate.label == helperIdentifier();
  });
  return job != jobs->end() && job->onDemand.value_or(false);
}

}  // namespace tapdeck
