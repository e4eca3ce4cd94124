#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "Platform/Linux/AppleScript/Desktop.h"

namespace tapdeck::applescript {

/// Why a script was not compiled or did not run to its end.
struct Error {
  /// The Mac's number: -2741 for a syntax error, -1728 for an object that does not exist, ...
  int number = 0;
  /// In the user's words, such as "Music got an error: Can’t get current track.".
  std::string message;
  /// The application that reported it; empty when it was the script's own fault.
  std::string application;
  /// The place in the source, in characters from its start; the end is the one after the last.
  size_t start = 0;
  size_t end = 0;
  /// Whether the text could not be compiled, so that none of it was run.
  bool isSyntaxError = false;
};

/// The outcome of a script.
struct Result {
  /// The value as people read it: texts without quotes. Absent when there is none.
  std::optional<std::string> text;
  std::optional<Error> error;
};

/// Compiles and runs the source, UTF-8, on this desktop.
Result run(const std::string& source, Desktop& desktop);

}  // namespace tapdeck::applescript
