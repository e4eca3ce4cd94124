#include "Platform/Scripts.h"

#include <filesystem>

#include "Platform/Linux/Interpreter/SystemDesktop.h"

namespace tapdeck::platform {

struct AppleScript {
  std::string source;
};

std::string scriptInterpreterPath() {
  std::error_code unreadable;
  const auto executable = std::filesystem::read_symlink("/proc/self/exe", unreadable);
  return executable.parent_path() / "tapdeck-osascript";
}

std::shared_ptr<AppleScript> appleScriptWithSource(const std::string& source) {
  return std::make_shared<AppleScript>(AppleScript{source});
}

std::optional<std::string> executeAppleScript(AppleScript& script) {
  const auto error = applescript::runOnThisMachine(script.source).error;
  if (!error) return std::nullopt;
  return error->message + " (" + std::to_string(error->number) + ")";
}

}  // namespace tapdeck::platform
