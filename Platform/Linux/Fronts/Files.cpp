#include "Platform/Files.h"

#include <glib.h>

#include <filesystem>
#include <fstream>
#include <iterator>

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

std::string temporaryDirectory() {
  // not /tmp, which is everybody's: a name known beforehand would be anyone's to put there first
  return g_get_user_runtime_dir();
}

std::optional<std::vector<uint8_t>> contentsAtPath(const std::string& path) {
  std::error_code error;
  // a pipe could keep its reader waiting for ever
  if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(file), {}};
  return file.bad() ? std::nullopt : std::optional(std::move(bytes));
}

void removeItem(const std::string& path) {
  std::error_code notReported;
  std::filesystem::remove_all(path, notReported);
}

}  // namespace tapdeck::platform
