#pragma once

#include <string>

namespace tapdeck::platform {

// NSUserDefaults.standardUserDefaults: what the application remembers for this user across runs.
// Main thread only.

/// boolForKey: false when nothing was ever set.
bool userDefaultsBool(const std::string& key);

/// setBool:forKey: the value can be read at once; that it could not be kept is not reported.
void setUserDefaultsBool(const std::string& key, bool value);

}  // namespace tapdeck::platform
