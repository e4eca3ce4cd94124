// Applications and their files, recorded.

#include <algorithm>

#include "Platform/Files.h"
#include "Platform/PropertyLists.h"
#include "Tests/Support/Recording/Recording.h"

namespace tapdeck::platform {

using recording::at;
using recording::record;
using recording::script;

namespace {

const recording::Applications& applications() {
  return recording::script().applications;
}

}  // namespace

std::vector<RunningApplication> runningApplications() {
  return applications().running;
}

std::vector<std::string> runningApplicationNames() {
  ++script().applications.timesNamed;
  std::vector<std::string> names;
  for (const auto& application : applications().running) {
    if (application.localizedName) names.push_back(*application.localizedName);
  }
  return names;
}

std::optional<std::string> bundleIdentifierAt(const std::string& path) {
  record("bundle " + path);
  return at(applications().bundles, path);
}

std::optional<std::string> pathForApplication(const std::string& bundleIdentifier) {
  const auto& bundles = applications().bundles;
  const auto found = std::find_if(bundles.begin(), bundles.end(), [&](const auto& bundle) {
    return bundle.second == bundleIdentifier;
  });
  return found != bundles.end() ? std::optional(found->first) : std::nullopt;
}

void openApplication(const std::string& path) {
  record("open application " + path);
}

std::string homeDirectory() {
  return "/Users/me";
}

std::vector<std::string> contentsOfDirectory(const std::string& path) {
  record("list " + path);
  return at(applications().folders, path).value_or(std::vector<std::string>());
}

std::optional<ValueMap> dictionaryFromFile(const std::string& path) {
  record("read " + path);
  return at(applications().propertyLists, path);
}

}  // namespace tapdeck::platform
