#pragma once

#include <optional>
#include <string>

namespace tapdeck::platform {

/// The value of a variable of the process's environment; absent when it is not set, empty when it
/// is set to nothing. Main thread only.
std::optional<std::string> environmentVariable(const std::string& name);

/// Writes "❌ " and the message to standard error and ends the process at once by abort(3), after
/// the platform has let go of what it still holds pressed. For values that no caller may pass.
[[noreturn]] void stopProcess(const std::string& message);

}  // namespace tapdeck::platform
