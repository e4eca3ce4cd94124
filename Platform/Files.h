#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tapdeck::platform {

/// NSHomeDirectory: the user's home folder, without a slash at its end. Any thread.
std::string homeDirectory();

/// NSFileManager contentsOfDirectoryAtPath: the names in the folder, in no order; empty when it
/// cannot be listed. Main thread only.
std::vector<std::string> contentsOfDirectory(const std::string& path);

/// NSFileManager temporaryDirectory: a folder of this user's own for files that need not last,
/// without a slash at its end. Any thread.
std::string temporaryDirectory();

/// NSFileManager contentsAtPath: the file's bytes; absent when it cannot be read. Any thread.
std::optional<std::vector<uint8_t>> contentsAtPath(const std::string& path);

/// NSFileManager removeItemAtPath: whether it could be removed is not reported. Any thread.
void removeItem(const std::string& path);

}  // namespace tapdeck::platform
