#pragma once

#include <functional>
#include <string>

namespace tapdeck::permissions {

/// What the user at the computer lets the host do. Main thread only, all of it.
enum class Permission { control, screenCapture };

/// Read afresh from the user's settings at each call; granted until the user withdraws it.
bool isGranted(Permission permission);

/// The user's decision; kept across runs.
void setGranted(Permission permission, bool granted);

/// Brings the question before the user (the main window's switches) without waiting.
void ask(Permission permission);

/// The file of the user's settings, for who wants to watch it change.
std::string settingsPath();

/// What `ask` does; the main window installs itself here.
void setAskHandler(std::function<void(Permission)> handler);

}  // namespace tapdeck::permissions
