#include "Platform/LoginItems.h"

#include "Platform/Log.h"
#include "Platform/MainBundle.h"
#include "Platform/UserDefaults.h"
#include "Tests/Support/Recording/Recording.h"

namespace tapdeck::platform {

using recording::record;

namespace {

recording::LoginItems& loginItems() {
  return recording::script().loginItems;
}

std::string text(bool value) {
  return value ? "true" : "false";
}

}  // namespace

bool hasLoginItemServices() {
  return loginItems().hasServices;
}

LoginItemStatus mainAppServiceStatus() {
  return loginItems().status;
}

std::optional<std::string> registerMainAppService() {
  record("register main app");
  if (!loginItems().registrationError) loginItems().status = LoginItemStatus::enabled;
  return loginItems().registrationError;
}

std::optional<std::string> unregisterMainAppService() {
  record("unregister main app");
  if (!loginItems().unregistrationError) loginItems().status = LoginItemStatus::notRegistered;
  return loginItems().unregistrationError;
}

std::optional<std::string> unregisterLoginItemService(const std::string& identifier) {
  record("unregister login item " + identifier);
  return loginItems().unregistrationError;
}

bool setLoginItemEnabled(const std::string& identifier, bool enabled) {
  record("set login item " + identifier + " to " + text(enabled));
  return false;
}

std::optional<std::vector<LaunchdJob>> userLaunchdJobs() {
  return loginItems().jobs;
}

std::string mainBundleIdentifier() {
  return loginItems().bundleIdentifier;
}

bool userDefaultsBool(const std::string& key) {
  return loginItems().userDefaults[key];
}

void setUserDefaultsBool(const std::string& key, bool value) {
  record("set default " + key + " to " + text(value));
  loginItems().userDefaults[key] = value;
}

void logError(const char* subsystem, const char* category, const std::string& message) {
  record(std::string("log error ") + subsystem + " " + category + ": " + message);
}

void logLine(const std::string& line) {
  record("log " + line);
}

}  // namespace tapdeck::platform
