// Applications and their files, recorded.

#include "Tests/Support/Recording/Applications.h"

#include <algorithm>
#include <utility>

#include "Platform/Files.h"
#include "Platform/PropertyLists.h"
#include "Tests/Support/Recording/Recording.h"

namespace tapdeck::recording {

ApplicationsScript& applications() {
  static ApplicationsScript current;
  return current;
}

namespace {

template <typename Content>
std::optional<Content> at(const std::map<std::string, Content>& all, const std::string& key) {
  const auto found = all.find(key);
  return found != all.end() ? std::optional(found->second) : std::nullopt;
}

}  // namespace
}  // namespace tapdeck::recording

namespace tapdeck::platform {

using recording::applications;
using recording::record;

std::vector<RunningApplication> runningApplications() {
  return applications().running;
}

std::optional<std::string> bundleIdentifierAt(const std::string& path) {
  record("bundle " + path);
  return recording::at(applications().bundles, path);
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
  return recording::at(applications().folders, path).value_or(std::vector<std::string>());
}

std::optional<ValueMap> dictionaryFromFile(const std::string& path) {
  record("read " + path);
  return recording::at(applications().propertyLists, path);
}

}  // namespace tapdeck::platform
