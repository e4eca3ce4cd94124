#include "Platform/UserDefaults.h"

#include "Platform/Linux/Support/Diagnostics.h"
#include "Platform/Linux/Support/KeyFile.h"

namespace tapdeck::platform {

namespace {

constexpr const char* kGroup = "Defaults";

std::string path() {
  return std::string(g_get_user_config_dir()) + "/tapdeck/defaults.ini";
}

}  // namespace

bool userDefaultsBool(const std::string& key) {
  KeyFile file;
  file.load(path());
  return g_key_file_get_boolean(file.get(), kGroup, key.c_str(), nullptr) != FALSE;
}

void setUserDefaultsBool(const std::string& key, bool value) {
  KeyFile file;
  file.load(path());
  g_key_file_set_boolean(file.get(), kGroup, key.c_str(), value);
  if (const auto failure = file.save(path())) {
    warn(key + " is forgotten at once: " + *failure);
  }
}

}  // namespace tapdeck::platform
