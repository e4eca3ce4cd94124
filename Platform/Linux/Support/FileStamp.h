#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace tapdeck {

/// Identifies the state of a file or folder without reading it: another stamp means that it has
/// changed or was replaced.
struct FileStamp {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  time_t seconds = 0;
  long nanoseconds = 0;
  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

/// Absent when nothing is there, or only a link that leads nowhere. Any thread.
std::optional<FileStamp> stampOf(const std::string& path);

}  // namespace tapdeck
