#pragma once

#include <string>

namespace tapdeck::media {

/// The bytes at the address (`file:`, `data:`, `http:` or `https:`), as they are: up to 10 MB. A
/// download may take 2.5 s. Throws MediaError (notFound).
std::string readPicture(const std::string& url);

/// The bytes of a regular file, up to 10 MB. Never waits for a pipe or a device. Throws
/// MediaError (notFound).
std::string readPictureFile(const std::string& path);

}  // namespace tapdeck::media
