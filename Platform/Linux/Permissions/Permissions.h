#pragma once

#include <functional>
#include <string>

namespace tapdeck::permissions {

/// What the user at the computer lets the host do. Main thread only, all of it.
enum class Permission { control, screenCapture };

/// What the user's settings say at this moment; granted where they say nothing.
bool isGranted(Permission permission);

/// The user's decision; kept across runs.
void setGranted(Permission permission, bool granted);

/// Shows the user the switch of this permission, in the main window, and does not wait for a
/// decision.
void promptUser(Permission permission);

/// The path of the file of the user's settings, to watch for changes.
std::string settingsPath();

/// What promptUser calls; the main window sets it. Without one, promptUser does nothing.
void setPromptHandler(std::function<void(Permission)> handler);

}  // namespace tapdeck::permissions
