#pragma once

#include <memory>
#include <optional>
#include <string>

namespace tapdeck::platform {

/// Where the system's command-line script interpreter is. Any thread.
std::string scriptInterpreterPath();

/// NSAppleScript: one program's text, to be run in this process.
struct AppleScript;

/// initWithSource: null when it cannot be created. Main thread only.
std::shared_ptr<AppleScript> appleScriptWithSource(const std::string& source);

/// executeAndReturnError: runs the program to its end. The description of the error dictionary, or
/// nothing when there is none. Main thread only; the system may ask the user for permission to
/// control the application that the program speaks to.
std::optional<std::string> executeAppleScript(AppleScript& script);

}  // namespace tapdeck::platform
