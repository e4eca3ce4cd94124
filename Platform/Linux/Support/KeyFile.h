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

  /// What the file holds takes the place of what was here; on failure the reason, for people.
  std::optional<std::string> load(const std::string& path) const;

  /// Writes beside the file and renames, so that a reader meets the old state or the new one whole,
  /// readable by its owner only; creates missing folders. On failure the reason, for people, and
  /// the old file stands.
  std::optional<std::string> save(const std::string& path) const;

  /// Owned by this object.
  GKeyFile* get() const { return _file.get(); }

 private:
  glib::KeyFile _file;
};

}  // namespace tapdeck
