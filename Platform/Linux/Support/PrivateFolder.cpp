#include "Platform/Linux/Support/PrivateFolder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>

namespace tapdeck {
namespace {

namespace fs = std::filesystem;

std::optional<fs::path> folderIn(const char* variable) {
  const char* value = std::getenv(variable);
  if (value == nullptr || *value != '/') return std::nullopt;
  return fs::path(value);
}

[[noreturn]] void fail(const std::string& what) {
  throw std::runtime_error("Cannot " + what + ": " + std::generic_category().message(errno));
}

}  // namespace

fs::path runtimeFolder() {
  if (const auto runtime = folderIn("XDG_RUNTIME_DIR")) return *runtime / "tapdeck";
  return folderIn("TMPDIR").value_or("/tmp") / ("tapdeck-" + std::to_string(::geteuid()));
}

void claimPrivateFolder(const fs::path& folder) {
  if (::mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) fail("create " + folder.string());
  struct stat status = {};
  if (::lstat(folder.c_str(), &status) != 0) fail("look at " + folder.string());
  if (!S_ISDIR(status.st_mode) || status.st_uid != ::geteuid()) {
    throw std::runtime_error(folder.string() +
                             " is not a folder of this user; remove it or set XDG_RUNTIME_DIR.");
  }
  if ((status.st_mode & ALLPERMS) != S_IRWXU && ::chmod(folder.c_str(), S_IRWXU) != 0) {
    fail("make " + folder.string() + " private");
  }
}

}  // namespace tapdeck
