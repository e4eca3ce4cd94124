#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "Platform/Linux/AppleScript/Value.h"
#include "Platform/Linux/Support/FileDescriptor.h"

namespace tapdeck::applescript {

/// The files that a script has opened; closed with this object at the latest. A file is named by
/// the number that opening it gave, or by its path. Calls throw ScriptError.
class OpenFiles {
 public:
  /// Opens for writing, and creates a missing file for this user only. Follows no symbolic link, as
  /// others may write in folders for temporary files.
  int64_t open(const Value& file);
  void setSize(const Value& file, int64_t size);
  /// Texts in UTF-8, data as they are.
  void write(const Value& data, const Value& file);
  void close(const Value& file);

 private:
  struct Opened {
    std::string path;
    FileDescriptor descriptor;
  };
  using Numbered = std::map<int64_t, Opened>;
  Numbered::iterator find(const Value& file);

  Numbered _files;
  int64_t _last = 0;
};

}  // namespace tapdeck::applescript
