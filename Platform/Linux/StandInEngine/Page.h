#pragma once

#include <map>
#include <string>

#include "Platform/Linux/StandInEngine/Handles.h"

namespace tapdeck::standin {

/// The Console page's files, as they are built into the program. Nothing else can be asked for:
/// a path is looked up as it stands and never reaches a file system.
class Page {
 public:
  struct File {
    BytesHandle content;
    const char* type;
  };

  Page();
  /// The file for a URL path such as "/" or "/console.css"; null when there is none.
  const File* find(const std::string& path) const;

 private:
  std::map<std::string, File, std::less<>> _files;
};

}  // namespace tapdeck::standin
