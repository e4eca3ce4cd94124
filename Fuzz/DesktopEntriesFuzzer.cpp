// Desktop entries, which any package and the user may write.

#include <glib.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "Engine/Utf8.h"
#include "Fuzz/Require.h"
#include "Platform/Linux/Applications/DesktopEntries.h"
#include "Tests/Support/Surroundings.h"

namespace tapdeck {
namespace {

/// The user's data folder, with one application in it.
class DataFolder {
 public:
  DataFolder() {
    std::filesystem::create_directory(_folder.path / "applications");
    g_setenv("XDG_DATA_HOME", _folder.path.c_str(), TRUE);
    g_setenv("XDG_DATA_DIRS", (_folder.path / "none").c_str(), TRUE);
  }
  /// Under another name each time, so that it is a new file for certain.
  std::string put(const uint8_t* data, size_t size) {
    std::filesystem::remove(_file);
    const std::string id = std::to_string(++_count) + ".desktop";
    _file = _folder.path / "applications" / id;
    std::ofstream(_file, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    return id;
  }

 private:
  TemporaryFolder _folder;
  std::filesystem::path _file;
  int _count = 0;
};

}  // namespace
}  // namespace tapdeck

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tapdeck;
  static DataFolder folder;
  const std::string id = folder.put(data, size);
  const auto& entries = applications::DesktopEntries::current();
  const auto* entry = entries.withId(id);
  require(entries.all().size() == (entry != nullptr ? 1 : 0),
          "one file is one application or none");
  if (entry == nullptr) return 0;
  require(isUtf8(entry->name), "a name is UTF-8");
  require(entries.atPath(entry->path) == entry, "an application is found at its path");
  entries.ofWindowClass("fuzzed", entry->name);
  return 0;
}
