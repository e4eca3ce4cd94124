#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tapdeck::applications {

// The installed applications as if they lay in the folders of the Mac, where the host looks for
// them: the user's own in the home folder's "Applications", all others in "/Applications", each
// under its name in the user's language and ".app". Only those that menus show. There are no files
// at these paths. Main thread only.

/// The names in the folder, read afresh; absent when it is neither of the two.
std::optional<std::vector<std::string>> bundlesIn(const std::string& folder);

/// The desktop file id of the application at the path; absent when there is none.
std::optional<std::string> bundleIdentifier(const std::string& path);

}  // namespace tapdeck::applications
