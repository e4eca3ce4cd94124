#pragma once

#include <libsoup/soup.h>

#include <map>
#include <string>
#include <string_view>

#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::standin {

/// The Console page's files, as they are built into the program. Nothing else can be asked for:
/// a path is looked up as it stands and never reaches a file system.
class Page {
 public:
  Page();
  /// Answers a GET or HEAD request for a URL path such as "/" or "/style.css": the file, compressed
  /// where the browser takes that, or "not modified" for the entity tag that it names. False, and
  /// nothing done, when there is no such file.
  bool serve(SoupServerMessage* message, std::string_view path) const;

 private:
  /// A file's bytes in one content coding, and their entity tag (RFC 9110, 8.8.3).
  struct Form {
    glib::Bytes content;
    std::string tag;
  };
  struct File {
    Form plain;
    Form compressed;  ///< by gzip; without content for what is not text
    const char* type;
  };
  static Form load(const std::string& path);

  std::map<std::string, File, std::less<>> _files;
};

}  // namespace tapdeck::standin
