#pragma once

#include <string>

namespace tapdeck {

/// Starts the application with this bundle identifier, or brings it to the front when it runs.
/// Does nothing when there is none, and does not wait for the outcome. Main thread only.
void launchApplication(const std::string& bundleIdentifier);

}  // namespace tapdeck
