#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Linux/Support/FileStamp.h"

namespace tapdeck::applications {

/// One file of the applications folders.
struct DesktopFile {
  std::string path;
  std::optional<FileStamp> stamp;
  /// Whether it lies in the user's own folder.
  bool isUsers = false;
};

/// The desktop files of all applications folders by desktop file id, as the Desktop Entry standard
/// counts: the id is the path below the folder with "-" for "/", ".desktop" included; the user's
/// folder comes first and the first file of an id hides the others, whatever is in it.
std::map<std::string, DesktopFile> findDesktopFiles();

/// The states of the folders of $PATH.
std::vector<std::optional<FileStamp>> programFolderStamps();

}  // namespace tapdeck::applications
