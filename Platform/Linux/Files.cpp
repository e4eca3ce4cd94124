#include "Platform/Files.h"

#include <glib.h>

#include <filesystem>

#include "Platform/Linux/Applications/BundleFolders.h"

namespace tapdeck::platform {
namespace {

std::vector<std::string> namesIn(const std::string& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    names.push_back(entry->path().filename().string());
  }
  return names;
}

}  // namespace

std::string homeDirectory() {
  return g_get_home_dir();
}

std::vector<std::string> contentsOfDirectory(const std::string& path) {
  auto bundles = applications::bundlesIn(path);
  return bundles ? std::move(*bundles) : namesIn(path);
}

}  // namespace tapdeck::platform
