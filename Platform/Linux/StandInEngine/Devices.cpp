#include "Platform/Linux/StandInEngine/Devices.h"

#include <glib.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "Platform/Linux/StandInEngine/Access.h"
#include "Platform/Linux/Support/Diagnostics.h"
#include "Platform/Linux/Support/GLibOwners.h"
#include "Platform/Linux/Support/KeyFile.h"

namespace tapdeck::standin {
namespace {

constexpr std::string_view kPrefix = "Device ";
constexpr const char* kName = "name";
constexpr const char* kAdded = "added";
constexpr const char* kSeen = "seen";
constexpr const char* kSalt = "salt";
constexpr const char* kHash = "hash";
constexpr size_t kIdBytes = 8;
constexpr size_t kSaltBytes = 16;
constexpr size_t kSecretBytes = 32;

int64_t now() {
  return std::time(nullptr);
}

std::string groupOf(std::string_view id) {
  return std::string(kPrefix) + std::string(id);
}

/// The secret is random and as long as the hash: nothing slower is needed.
std::string hashOf(const std::string& salt, std::string_view secret) {
  const glib::Text hash(g_compute_hmac_for_data(
      G_CHECKSUM_SHA256, reinterpret_cast<const guchar*>(salt.data()), salt.size(),
      reinterpret_cast<const guchar*>(secret.data()), secret.size()));
  return hash.get();
}

std::string stringIn(const KeyFile& file, const std::string& group, const char* key) {
  const glib::Text text(g_key_file_get_string(file.get(), group.c_str(), key, nullptr));
  return text ? text.get() : "";
}

Device deviceIn(const KeyFile& file, const std::string& id) {
  const std::string group = groupOf(id);
  return {id, stringIn(file, group, kName),
          g_key_file_get_int64(file.get(), group.c_str(), kAdded, nullptr),
          g_key_file_get_int64(file.get(), group.c_str(), kSeen, nullptr)};
}

void load(const KeyFile& file, const std::string& path) {
  std::error_code unreadable;
  if (!std::filesystem::exists(path, unreadable)) return;
  if (const auto failure = file.load(path)) {
    warn("no device is known, for " + path + " cannot be read: " + *failure);
  }
}

void save(const KeyFile& file, const std::string& path) {
  if (const auto failure = file.save(path)) throw std::runtime_error(*failure);
}

std::string defaultPath() {
  return std::string(g_get_user_data_dir()) + "/tapdeck/devices.ini";
}

}  // namespace

Devices::Devices(std::string path) : _path(path.empty() ? defaultPath() : std::move(path)) {}

std::vector<Device> Devices::list() const {
  const KeyFile file;
  load(file, _path);
  const glib::Texts groups(g_key_file_get_groups(file.get(), nullptr));
  std::vector<Device> devices;
  for (char** group = groups.get(); *group != nullptr; ++group) {
    const std::string_view name = *group;
    if (!name.starts_with(kPrefix)) continue;
    devices.push_back(deviceIn(file, std::string(name.substr(kPrefix.size()))));
  }
  return devices;
}

std::optional<Device> Devices::withSecret(std::string_view secret) const {
  const std::string id(secret.substr(0, secret.find('.')));
  const KeyFile file;
  load(file, _path);
  const std::string group = groupOf(id);
  const std::string hash = stringIn(file, group, kHash);
  if (hash.empty()) return std::nullopt;
  if (!equalInConstantTime(hash, hashOf(stringIn(file, group, kSalt), secret))) return std::nullopt;
  return deviceIn(file, id);
}

std::optional<Devices::Paired> Devices::pair(const std::string& name) {
  if (list().size() >= kMaxCount) return std::nullopt;
  const Device device{randomDigits(kIdBytes), name, now(), now()};
  const std::string secret = device.id + "." + randomDigits(kSecretBytes);
  const std::string salt = randomDigits(kSaltBytes);
  const std::string group = groupOf(device.id);
  const KeyFile file;
  load(file, _path);
  g_key_file_set_string(file.get(), group.c_str(), kName, name.c_str());
  g_key_file_set_int64(file.get(), group.c_str(), kAdded, device.added);
  g_key_file_set_int64(file.get(), group.c_str(), kSeen, device.seen);
  g_key_file_set_string(file.get(), group.c_str(), kSalt, salt.c_str());
  g_key_file_set_string(file.get(), group.c_str(), kHash, hashOf(salt, secret).c_str());
  save(file, _path);
  return Paired{device, secret};
}

void Devices::noteSeen(const std::string& id) {
  const KeyFile file;
  load(file, _path);
  const std::string group = groupOf(id);
  if (!g_key_file_has_group(file.get(), group.c_str())) return;
  g_key_file_set_int64(file.get(), group.c_str(), kSeen, now());
  if (const auto failure = file.save(_path)) {
    warn("when a device was seen is not kept: " + *failure);
  }
}

void Devices::forget(const std::string& id) {
  const KeyFile file;
  load(file, _path);
  if (!g_key_file_remove_group(file.get(), groupOf(id).c_str(), nullptr)) return;
  save(file, _path);
}

}  // namespace tapdeck::standin
