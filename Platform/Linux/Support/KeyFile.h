#pragma once

#include <optional>
#include <string>

#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck {

/// A file of groups of keys, in the format that desktop entries have. Comments are
/// kept. Any thread, one at a time.
class KeyFile {
 public:
  KeyFile() : _file(g_key_file_new()) {}

  /// Replaces the contents by those of the file. Returns the reason, for people, when that fails.
  std::optional<std::string> load(const std::string& path) const;

  /// Writes a file for its owner only, and creates missing folders. The file is replaced atomically
  /// (by a rename), so that a reader sees the old contents or the new. Returns the reason, for
  /// people, when that fails, and then the old file stays.
  std::optional<std::string> save(const std::string& path) const;

  /// Owned by this object.
  GKeyFile* get() const { return _file.get(); }

 private:
  glib::KeyFile _file;
};

}  // namespace tapdeck
