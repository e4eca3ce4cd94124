#pragma once

#include <string>
#include <vector>

namespace tapdeck::platform {

/// NSHomeDirectory: the user's home folder, without a slash at its end. Any thread.
std::string homeDirectory();

/// NSFileManager contentsOfDirectoryAtPath: the names in the folder, in no order; empty when it
/// cannot be listed. Main thread only.
std::vector<std::string> contentsOfDirectory(const std::string& path);

}  // namespace tapdeck::platform
