#include "Platform/Linux/Applications/DesktopFiles.h"

#include <glib.h>

#include <filesystem>
#include <set>
#include <string_view>
#include <utility>

#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::applications {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kSuffix = ".desktop";
using Files = std::map<std::string, DesktopFile>;

/// The folders that a walk has come through, which links may lead to again.
using Visited = std::set<std::pair<dev_t, ino_t>>;

bool isFirstVisit(Visited& visited, const fs::path& folder) {
  const auto stamp = stampOf(folder);
  return stamp && visited.insert({stamp->device, stamp->inode}).second;
}

void addFolder(Files& files, Visited& visited, const fs::path& folder, const std::string& idPrefix,
               bool isUsers) {
  if (!isFirstVisit(visited, folder)) return;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    const std::string& path = entry->path().native();
    std::error_code unreadable;
    if (name.ends_with(kSuffix)) {
      if (!files.contains(idPrefix + name)) files[idPrefix + name] = {path, stampOf(path), isUsers};
    } else if (entry->is_directory(unreadable)) {
      addFolder(files, visited, entry->path(), idPrefix + name + "-", isUsers);
    }
  }
}

void addDataFolder(Files& files, const char* folder, bool isUsers) {
  Visited visited;
  addFolder(files, visited, fs::path(folder) / "applications", "", isUsers);
}

}  // namespace

std::map<std::string, DesktopFile> findDesktopFiles() {
  Files files;
  addDataFolder(files, g_get_user_data_dir(), true);
  for (const char* const* folder = g_get_system_data_dirs(); *folder != nullptr; ++folder) {
    addDataFolder(files, *folder, false);
  }
  return files;
}

std::vector<std::optional<FileStamp>> programFolderStamps() {
  std::vector<std::optional<FileStamp>> stamps;
  const char* path = g_getenv("PATH");
  const glib::Texts folders(g_strsplit(path != nullptr ? path : "", ":", -1));
  for (char** folder = folders.get(); *folder != nullptr; ++folder) {
    stamps.push_back(stampOf(*folder));
  }
  return stamps;
}

}  // namespace tapdeck::applications
