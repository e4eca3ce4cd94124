#pragma once

#include <string>

namespace tapdeck::applescript {

/// The bytes at the address (`file:`, `data:`, `http:` or `https:`), as they are: up to 10 MB, and
/// what does not come within 2.5 s does not come. Throws ScriptError.
std::string readPicture(const std::string& url);

/// The bytes of a regular file, up to 10 MB. Never waits for a pipe or a device. Throws
/// ScriptError.
std::string readPictureFile(const std::string& path);

}  // namespace tapdeck::applescript
