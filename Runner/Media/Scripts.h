#pragma once

#include <optional>
#include <string>

namespace tapdeck {

// Four ways to run an AppleScript program. Nothing in its text is escaped or quoted.

/// Runs it in the script interpreter and gives its standard output as it is, or an empty text when
/// that is not UTF-8. Waits without a limit until the output closes; the exit status is not looked
/// at. An interpreter that cannot be started ends the process. Any thread.
std::string runScriptCapturing(const std::string& script);

/// Runs it in the script interpreter and gives its standard output, trimmed; absent when the
/// interpreter cannot be started, takes longer than `timeLimit` seconds (it is asked to end then),
/// fails, or writes what is not UTF-8. Looks every 20 ms whether it is done. Any thread.
std::optional<std::string> runScriptBounded(const std::string& script, double timeLimit);

/// The same, but trims up to tabs only at the end, so that empty fields there remain.
std::optional<std::string> runFieldScriptBounded(const std::string& script, double timeLimit);

/// Starts it in the script interpreter and returns at once. A failure is logged when it comes. Any
/// thread.
void runScriptDetached(const std::string& script);

/// Runs it in this process to its end, and prints how it went. Main thread only.
void runScriptInProcess(const std::string& script);

}  // namespace tapdeck
