// The Dock's property list, which may hold anything of any kind, and the list of applications that
// is made of it.

#include <cstddef>
#include <cstdint>
#include <set>
#include <span>
#include <string>

#include "Engine/StandardCodec.h"
#include "Fuzz/Require.h"
#include "Runner/Apps/Catalogue.h"
#include "Tests/Support/Recording/Recording.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tapdeck;
  const auto value = codec::decodeMessage(std::span(data, size));
  const auto* list = value ? value->getIf<ValueMap>() : nullptr;
  if (list == nullptr) return -1;  // what the system's own reader refuses
  recording::reset();
  auto& applications = recording::script().applications;
  applications.propertyLists["/Users/me/Library/Preferences/com.apple.dock.plist"] = *list;
  applications.folders["/Applications"] = {"Notes.app"};
  applications.bundles["/Applications/Notes.app"] = "com.example.notes";

  std::set<std::string> identifiers;
  std::string before;
  for (const Value& entry : applicationCatalogue()) {
    const auto* map = entry.getIf<ValueMap>();
    const auto text = [map](const char* key) { return *map->find(key)->getIf<std::string>(); };
    require(identifiers.insert(text("bundleId")).second, "an application is listed once");
    require(before <= text("name"), "the list is sorted by name");
    before = text("name");
  }
  require(identifiers.contains("com.example.notes"), "what is installed is listed");
  return 0;
}
