#pragma once

#include <string>

namespace tapdeck::platform {

/// NSBundle.mainBundle.bundleIdentifier: the application's identifier; empty for a process that
/// runs outside any bundle. Any thread.
std::string mainBundleIdentifier();

}  // namespace tapdeck::platform
