#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace tapdeck::applescript {

/// Why a script was not compiled or did not run to its end.
struct Error {
  /// As on the Mac: -2741 for what is no program, -1728 for what is not there, ...
  int number = 0;
  /// In the user's words, such as "Music got an error: Can’t get current track.".
  std::string message;
  /// The application that reported it; empty when it was the script's own fault.
  std::string application;
  /// The place in the source, in characters from its start; the end is the one after the last.
  size_t start = 0;
  size_t end = 0;
  /// Whether the text is no program: nothing of it was run.
  bool isSyntaxError = false;
};

/// What a script came to.
struct Result {
  /// The value as people read it: texts without quotes. Absent when there is none.
  std::optional<std::string> text;
  std::optional<Error> error;
};

/// Compiles and runs the source, UTF-8, on this machine: media players of the session bus, the
/// sound server, the login manager. Waits for them, for about a second each at the most. Any
/// thread, but the main thread for the login manager, whose answer the main loop waits for.
Result run(const std::string& source);

}  // namespace tapdeck::applescript
