#include "Platform/Linux/Permissions/Permissions.h"

#include <array>
#include <optional>
#include <string>
#include <utility>

#include "Platform/Linux/Support/Diagnostics.h"
#include "Platform/Linux/Support/FileStamp.h"
#include "Platform/Linux/Support/KeyFile.h"

namespace tapdeck::permissions {

namespace {

constexpr const char* kGroup = "Permissions";
constexpr std::array<const char*, 2> keys = {"control", "screenCapture"};

struct Settings {
  std::array<bool, 2> granted = {true, true};
};

/// The settings as last read, and of which state of the file; no stamp when there was no file.
struct Cache {
  Settings settings;
  std::optional<FileStamp> stamp;
};

Cache& cache() {
  static Cache only;
  return only;
}

std::function<void(Permission)>& promptHandler() {
  static std::function<void(Permission)> handler;
  return handler;
}

/// A file that cannot be read grants nothing: it may say what the user has withdrawn.
Settings read(const std::string& path) {
  Settings settings;
  KeyFile file;
  if (const auto failure = file.load(path)) {
    warn("nothing is permitted, for " + path + " cannot be read: " + *failure);
    settings.granted.fill(false);
    return settings;
  }
  for (std::size_t i = 0; i < keys.size(); ++i) {
    if (!g_key_file_has_key(file.get(), kGroup, keys[i], nullptr)) continue;
    settings.granted[i] = g_key_file_get_boolean(file.get(), kGroup, keys[i], nullptr);
  }
  return settings;
}

const Settings& current() {
  const std::string path = settingsPath();
  auto stamp = stampOf(path);
  if (stamp != cache().stamp) {
    cache().settings = stamp ? read(path) : Settings{};
    cache().stamp = stamp;
  }
  return cache().settings;
}

}  // namespace

std::string settingsPath() {
  return std::string(g_get_user_config_dir()) + "/tapdeck/permissions.ini";
}

bool isGranted(Permission permission) {
  return current().granted[static_cast<std::size_t>(permission)];
}

void setGranted(Permission permission, bool granted) {
  Settings settings = current();
  settings.granted[static_cast<std::size_t>(permission)] = granted;

  const std::string path = settingsPath();
  KeyFile file;
  // What else stands in the file is kept where it can be read.
  file.load(path);
  for (std::size_t i = 0; i < keys.size(); ++i) {
    g_key_file_set_boolean(file.get(), kGroup, keys[i], settings.granted[i]);
  }
  if (const auto failure = file.save(path)) {
    warn("the permission holds for this run only: " + *failure);
  }
  cache() = {settings, stampOf(path)};
}

void promptUser(Permission permission) {
  if (promptHandler()) promptHandler()(permission);
}

void setPromptHandler(std::function<void(Permission)> handler) {
  promptHandler() = std::move(handler);
}

}  // namespace tapdeck::permissions
