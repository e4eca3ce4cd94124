#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace tapdeck {

/// Where a running host is reached: what session.json says.
struct Session {
  /// The page's address for people, the token in its fragment.
  std::string url;
  uint16_t port = 0;
  std::string token;
  /// The host's process.
  int pid = 0;
};

/// $XDG_RUNTIME_DIR/tapdeck/session.json; without that variable, session.json in tapdeck-UID under
/// $TMPDIR or /tmp. Nothing is created. Any thread, as is all of this.
std::filesystem::path sessionFilePath();

/// Puts the file in place at once (never half written), readable by its owner only, and creates its
/// folder when it is missing. Throws std::runtime_error, with a message for people, when the folder
/// is not one of our own (a link, or another user's) or cannot be written.
void writeSession(const Session& session);

/// What the file says; nothing when it is missing, is not our own or does not hold a session.
std::optional<Session> readSession();

/// Takes the file away if it is the one that the process `pid` wrote; a later host's stays.
void removeSession(int pid);

}  // namespace tapdeck
