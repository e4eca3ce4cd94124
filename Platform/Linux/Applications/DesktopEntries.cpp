#include "Platform/Linux/Applications/DesktopEntries.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace tapdeck::applications {
namespace {

bool isSameState(const DesktopFile& a, const DesktopFile& b) {
  return a.path == b.path && a.stamp && a.stamp == b.stamp;
}

std::string validUtf8(const char* text) {
  const glib::Text valid(g_utf8_make_valid(text, -1));
  return valid.get();
}

/// Null when the file describes no application that can be started.
std::shared_ptr<const DesktopEntry> load(const std::string& id, const DesktopFile& file) {
  if (!file.stamp) return nullptr;
  // checks TryExec and Exec too
  glib::Object<GDesktopAppInfo> info(g_desktop_app_info_new_from_filename(file.path.c_str()));
  if (info == nullptr || g_desktop_app_info_get_is_hidden(info.get()) != FALSE) return nullptr;
  auto* application = G_APP_INFO(info.get());
  DesktopEntry entry{.id = validUtf8(id.c_str()),
                     .path = file.path,
                     .name = validUtf8(g_app_info_get_name(application)),
                     .isUsers = file.isUsers,
                     .isShown = g_app_info_should_show(application) != FALSE,
                     .info = std::move(info)};
  return std::make_shared<const DesktopEntry>(std::move(entry));
}

bool isSameIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && g_ascii_strncasecmp(a.data(), b.data(), a.size()) == 0;
}

bool isWindowClassOf(const DesktopEntry& entry, std::string_view text) {
  const char* own = g_desktop_app_info_get_startup_wm_class(entry.info.get());
  return own != nullptr && text == own;
}

/// The first that fits, but one that menus show goes before one that they do not.
template <typename Fits>
const DesktopEntry* best(const DesktopEntries::Entries& entries, Fits fits) {
  const DesktopEntry* found = nullptr;
  for (const auto& entry : entries) {
    if ((found == nullptr || (entry->isShown && !found->isShown)) && fits(*entry)) {
      found = entry.get();
    }
  }
  return found;
}

}  // namespace

const DesktopEntries& DesktopEntries::current() {
  static DesktopEntries only;
  only.update();
  return only;
}

void DesktopEntries::update() {
  auto programFolders = programFolderStamps();
  // the programs that TryExec looks for may have been installed or removed
  if (programFolders != _programFolders) _cache.clear();
  _programFolders = std::move(programFolders);

  std::map<std::string, CacheEntry> fresh;
  _all.clear();
  for (auto& [id, file] : findDesktopFiles()) {
    const auto cached = _cache.find(id);
    const bool isCached = cached != _cache.end() && isSameState(cached->second.file, file);
    auto entry = isCached ? cached->second.entry : load(id, file);
    if (entry != nullptr) _all.push_back(entry);
    fresh.emplace_hint(fresh.end(), id, CacheEntry{std::move(file), std::move(entry)});
  }
  _cache = std::move(fresh);
}

const DesktopEntry* DesktopEntries::withId(std::string_view id) const {
  const auto found =
      std::find_if(_all.begin(), _all.end(), [&](const auto& entry) { return entry->id == id; });
  return found != _all.end() ? found->get() : nullptr;
}

const DesktopEntry* DesktopEntries::atPath(std::string_view path) const {
  const auto found = std::find_if(_all.begin(), _all.end(),
                                  [&](const auto& entry) { return entry->path == path; });
  return found != _all.end() ? found->get() : nullptr;
}

const DesktopEntry* DesktopEntries::ofWindowClass(std::string_view instance,
                                                  std::string_view className) const {
  const std::initializer_list<std::string_view> texts = {instance, className};
  for (const std::string_view text : texts) {
    if (text.empty()) continue;
    const auto* found = best(_all, [&](const auto& each) { return isWindowClassOf(each, text); });
    if (found != nullptr) return found;
  }
  for (const std::string_view text : texts) {
    if (text.empty()) continue;
    const std::string id = std::string(text) + ".desktop";
    const auto* found =
        best(_all, [&](const auto& each) { return isSameIgnoringCase(each.id, id); });
    if (found != nullptr) return found;
  }
  return nullptr;
}

}  // namespace tapdeck::applications
