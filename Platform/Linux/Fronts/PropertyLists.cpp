#include "Platform/PropertyLists.h"

#include <gio/gio.h>

#include <memory>
#include <vector>

#include "Platform/Files.h"
#include "Platform/Linux/Applications/DesktopEntries.h"
#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::platform {
namespace {

using applications::DesktopEntries;
using glib::Object;

/// The desktop file ids that the user keeps in GNOME's dash; empty on other desktops.
std::vector<std::string> favourites() {
  constexpr const char* key = "favorite-apps";
  GSettingsSchemaSource* source = g_settings_schema_source_get_default();
  if (source == nullptr) return {};
  const glib::SettingsSchema schema(
      g_settings_schema_source_lookup(source, "org.gnome.shell", TRUE));
  if (schema == nullptr || g_settings_schema_has_key(schema.get(), key) == FALSE) return {};
  const Object<GSettings> settings(g_settings_new_full(schema.get(), nullptr, nullptr));
  const glib::Texts ids(g_settings_get_strv(settings.get(), key));
  std::vector<std::string> list;
  for (char** id = ids.get(); *id != nullptr; ++id) list.emplace_back(*id);
  return list;
}

/// The favourites in the form in which the Mac's Dock keeps its own. A favourite that is not
/// installed has no name and is left out, as the desktop leaves it out.
ValueMap dockSettings() {
  const DesktopEntries& entries = DesktopEntries::current();
  Value::List tiles;
  for (const std::string& id : favourites()) {
    const auto* entry = entries.withId(id);
    if (entry == nullptr) continue;
    ValueMap data{{"bundle-identifier", Value(entry->id)}, {"file-label", Value(entry->name)}};
    tiles.emplace_back(ValueMap{{"tile-data", Value(std::move(data))}});
  }
  return {{"persistent-apps", Value(std::move(tiles))}};
}

}  // namespace

std::optional<ValueMap> dictionaryFromFile(const std::string& path) {
  // the one property list that has a counterpart here
  if (path != homeDirectory() + "/Library/Preferences/com.apple.dock.plist") return std::nullopt;
  return dockSettings();
}

}  // namespace tapdeck::platform
