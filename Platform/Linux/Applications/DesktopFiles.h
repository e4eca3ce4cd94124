#pragma once

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tapdeck::applications {

/// What tells one state of a file or folder from the next without reading it.
struct Stamp {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  time_t seconds = 0;
  long nanoseconds = 0;
  friend bool operator==(const Stamp&, const Stamp&) = default;
};

/// Absent when nothing is there, or only a link that leads nowhere.
std::optional<Stamp> stampOf(const std::string& path);

/// One file of the applications folders.
struct DesktopFile {
  std::string path;
  std::optional<Stamp> stamp;
  /// Whether it lies in the user's own folder.
  bool isUsers = false;
};

/// The desktop files of all applications folders by desktop file id, as the Desktop Entry standard
/// counts: the id is the path below the folder with "-" for "/", ".desktop" included; the user's
/// folder comes first and the first file of an id hides the others, whatever is in it.
std::map<std::string, DesktopFile> findDesktopFiles();

/// The states of the folders of $PATH.
std::vector<std::optional<Stamp>> programFolderStamps();

}  // namespace tapdeck::applications
