#include "Platform/Linux/Applications/BundleFolders.h"

#include <glib.h>

#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "Platform/Linux/Applications/DesktopEntries.h"

namespace tapdeck::applications {
namespace {

constexpr const char* kSystemFolder = "/Applications";

std::string userFolder() {
  return std::string(g_get_home_dir()) + "/Applications";
}

/// Desktop file ids by path.
using Bundles = std::map<std::string, std::string>;

Bundles& cachedBundles() {
  static Bundles bundles;
  return bundles;
}

/// The entry's name, with its id appended as long as another bundle has the same.
std::string uniqueName(const DesktopEntry& entry, std::set<std::string>& taken) {
  constexpr std::string_view suffix = ".desktop";
  std::string name = entry.name;
  while (!taken.insert(name).second) {
    name += " (" + entry.id.substr(0, entry.id.size() - suffix.size()) + ")";
  }
  return name;
}

void update() {
  Bundles bundles;
  std::set<std::string> names;
  for (const auto& entry : DesktopEntries::current().all()) {
    if (!entry->isShown) continue;
    const std::string name = uniqueName(*entry, names);
    bundles[(entry->isUsers ? userFolder() : kSystemFolder) + "/" + name + ".app"] = entry->id;
  }
  cachedBundles() = std::move(bundles);
}

}  // namespace

std::optional<std::vector<std::string>> bundlesIn(const std::string& folder) {
  if (folder != kSystemFolder && folder != userFolder()) return std::nullopt;
  update();
  std::vector<std::string> names;
  const std::string start = folder + "/";
  for (const auto& [path, id] : cachedBundles()) {
    if (path.starts_with(start)) names.push_back(path.substr(start.size()));
  }
  return names;
}

std::optional<std::string> bundleIdentifier(const std::string& path) {
  auto found = cachedBundles().find(path);
  if (found == cachedBundles().end()) {
    update();
    found = cachedBundles().find(path);
  }
  return found != cachedBundles().end() ? std::optional(found->second) : std::nullopt;
}

}  // namespace tapdeck::applications
