#pragma once

#include <filesystem>

namespace tapdeck {

/// Where the host keeps what lives as long as the user's session: $XDG_RUNTIME_DIR/tapdeck; without
/// that variable, tapdeck-UID under $TMPDIR or /tmp. A variable that holds a relative path, which
/// names another folder for each working directory, counts as unset. Nothing is created. Any
/// thread.
std::filesystem::path runtimeFolder();

/// Creates the folder, but not the one it lies in, when it is missing, and makes it this user's
/// alone (mode 0700). Throws std::runtime_error, with a message for people, when that fails or when
/// what is there is a link or another user's: in a shared temporary folder anybody may have been
/// first. Any thread.
void claimPrivateFolder(const std::filesystem::path& folder);

}  // namespace tapdeck
