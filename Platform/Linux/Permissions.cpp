#include "Platform/Linux/Permissions.h"

#include <gio/gio.h>
#include <sys/stat.h>

#include <array>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace tapdeck::permissions {

namespace {

constexpr const char* kGroup = "Permissions";
constexpr std::array<const char*, 2> keys = {"control", "screenCapture"};

struct KeyFileDeleter {
  void operator()(GKeyFile* file) const { g_key_file_unref(file); }
};
using KeyFile = std::unique_ptr<GKeyFile, KeyFileDeleter>;

struct ErrorDeleter {
  void operator()(GError* error) const { g_error_free(error); }
};
using Error = std::unique_ptr<GError, ErrorDeleter>;

/// What tells one state of the file from the next without reading it.
struct Stamp {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  time_t seconds = 0;
  long nanoseconds = 0;
  friend bool operator==(const Stamp&, const Stamp&) = default;
};

struct Settings {
  std::array<bool, 2> granted = {true, true};
};

/// The settings as last read, and of which state of the file; no stamp when there was no file.
struct Cache {
  Settings settings;
  std::optional<Stamp> stamp;
};

Cache& cache() {
  static Cache only;
  return only;
}

std::function<void(Permission)>& askHandler() {
  static std::function<void(Permission)> handler;
  return handler;
}

std::optional<Stamp> stampOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  return Stamp{status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec,
               status.st_mtim.tv_nsec};
}

Error load(GKeyFile* file, const std::string& path) {
  GError* error = nullptr;
  g_key_file_load_from_file(file, path.c_str(), G_KEY_FILE_KEEP_COMMENTS, &error);
  return Error(error);
}

/// A file that says something unreadable grants nothing: nobody can tell what the user withdrew.
Settings read(const std::string& path) {
  Settings settings;
  const KeyFile file(g_key_file_new());
  if (const Error error = load(file.get(), path)) {
    std::fprintf(stderr, "tapdeck: nothing is permitted, for %s cannot be read: %s\n", path.c_str(),
                 error->message);
    settings.granted.fill(false);
    return settings;
  }
  for (std::size_t i = 0; i < keys.size(); ++i) {
    if (!g_key_file_has_key(file.get(), kGroup, keys[i], nullptr)) continue;
    settings.granted[i] = g_key_file_get_boolean(file.get(), kGroup, keys[i], nullptr);
  }
  return settings;
}

/// Writes beside the file and renames, so that a reader meets the old state or the new one whole.
Error save(GKeyFile* file, const std::string& path) {
  const std::unique_ptr<char, decltype(&g_free)> folder(g_path_get_dirname(path.c_str()), g_free);
  g_mkdir_with_parents(folder.get(), 0700);
  gsize length = 0;
  const std::unique_ptr<char, decltype(&g_free)> text(g_key_file_to_data(file, &length, nullptr),
                                                      g_free);
  GError* error = nullptr;
  g_file_set_contents_full(path.c_str(), text.get(), static_cast<gssize>(length),
                           G_FILE_SET_CONTENTS_CONSISTENT, 0600, &error);
  return Error(error);
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
  const KeyFile file(g_key_file_new());
  // What else stands in the file is kept where it can be read.
  load(file.get(), path);
  for (std::size_t i = 0; i < keys.size(); ++i) {
    g_key_file_set_boolean(file.get(), kGroup, keys[i], settings.granted[i]);
  }
  if (const Error error = save(file.get(), path)) {
    std::fprintf(stderr, "tapdeck: the permission holds for this run only: %s\n", error->message);
  }
  cache() = {settings, stampOf(path)};
}

void ask(Permission permission) {
  if (askHandler()) askHandler()(permission);
}

void setAskHandler(std::function<void(Permission)> handler) {
  askHandler() = std::move(handler);
}

}  // namespace tapdeck::permissions
