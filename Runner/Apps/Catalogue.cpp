#include "Runner/Apps/Catalogue.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Platform/Applications.h"
#include "Platform/Files.h"
#include "Platform/PropertyLists.h"

namespace tapdeck {
namespace {

constexpr std::string_view kBundleSuffix = ".app";

struct Entry {
  std::string bundleId;
  std::string name;
  bool isRunning;
};

/// The entries found so far, in the order in which their identifiers were found.
class Collection {
 public:
  void add(Entry entry) {
    if (_places.try_emplace(entry.bundleId, _entries.size()).second) {
      _entries.push_back(std::move(entry));
    }
  }
  void addOrReplace(Entry entry) {
    const auto [place, isNew] = _places.try_emplace(entry.bundleId, _entries.size());
    if (isNew) {
      _entries.push_back(std::move(entry));
    } else {
      _entries[place->second] = std::move(entry);
    }
  }
  std::vector<Entry> takeSortedByName() {
    // UTF-8 compares by bytes as its code points do
    std::stable_sort(_entries.begin(), _entries.end(),
                     [](const Entry& a, const Entry& b) { return a.name < b.name; });
    return std::move(_entries);
  }

 private:
  std::vector<Entry> _entries;
  std::unordered_map<std::string, size_t> _places;
};

void addRunning(Collection& collection) {
  for (const auto& application : platform::runningApplications()) {
    const auto& [policy, identifier, name, process] = application;
    if (policy != platform::ActivationPolicy::regular || !identifier || !name) continue;
    collection.addOrReplace({*identifier, *name, true});
  }
}

/// What stands under the key of a dictionary when it is of this kind, else null.
template <typename Kind>
const Kind* find(const ValueMap* dictionary, std::string_view key) {
  const Value* value = dictionary != nullptr ? dictionary->find(key) : nullptr;
  return value != nullptr ? value->getIf<Kind>() : nullptr;
}

void addKeptInDock(Collection& collection) {
  const auto settings = platform::dictionaryFromFile(platform::homeDirectory() +
                                                     "/Library/Preferences/com.apple.dock.plist");
  const auto* tiles = find<Value::List>(settings ? &*settings : nullptr, "persistent-apps");
  if (tiles == nullptr) return;
  for (const Value& tile : *tiles) {
    const auto* data = find<ValueMap>(tile.getIf<ValueMap>(), "tile-data");
    const auto* identifier = find<std::string>(data, "bundle-identifier");
    const auto* label = find<std::string>(data, "file-label");
    if (identifier != nullptr && label != nullptr) collection.add({*identifier, *label, false});
  }
}

void addInstalled(Collection& collection, const std::string& folder) {
  const std::string prefix = folder + "/";
  for (const std::string& entry : platform::contentsOfDirectory(folder)) {
    if (!entry.ends_with(kBundleSuffix)) continue;
    const auto identifier = platform::bundleIdentifierAt(prefix + entry);
    if (!identifier) continue;
    collection.add({*identifier, entry.substr(0, entry.size() - kBundleSuffix.size()), false});
  }
}

}  // namespace

Value::List applicationCatalogue() {
  Collection collection;
  addRunning(collection);
  addKeptInDock(collection);
  addInstalled(collection, "/Applications");
  addInstalled(collection, platform::homeDirectory() + "/Applications");
  addInstalled(collection, "/System/Applications");

  Value::List list;
  for (Entry& entry : collection.takeSortedByName()) {
    list.emplace_back(ValueMap{{"bundleId", Value(std::move(entry.bundleId))},
                               {"name", Value(std::move(entry.name))},
                               {"isRunning", Value(entry.isRunning)}});
  }
  return list;
}

}  // namespace tapdeck
