#include "Runner/Media/Scripts.h"

#include <string_view>

#include "Engine/Utf8.h"
#include "Platform/Clock.h"
#include "Platform/Log.h"
#include "Platform/Scripts.h"
#include "Platform/Tasks.h"
#include "Runner/Diagnostics.h"
#include "Runner/Media/Numbers.h"
#include "Runner/Media/Text.h"

namespace tapdeck {
namespace {

using platform::Pipe;
using platform::Task;

constexpr uint32_t kPollMicroseconds = 20000;

std::vector<std::string> argumentsFor(const std::string& script) {
  return {"-e", script};
}

Task interpreterOf(const std::string& script) {
  Task task;
  task.setExecutableUrl(platform::scriptInterpreterPath());
  task.setArguments(argumentsFor(script));
  return task;
}

/// False when it cannot be started, which is logged.
bool start(Task& task) {
  const auto error = task.launchAndReturnError();
  if (error) platform::logLine("⚠️ Could not launch osascript: " + *error);
  return !error;
}

/// Waits until the task has ended; false when it has not by the time limit.
bool endsWithin(const Task& task, double timeLimit) {
  const double deadline = platform::systemUptime() + timeLimit;
  while (task.isRunning() && platform::systemUptime() < deadline) {
    platform::sleepMicroseconds(kPollMicroseconds);
  }
  return !task.isRunning();
}

/// The interpreter's whole output; absent as runScriptBounded has it.
std::optional<std::string> outputWithin(const std::string& script, double timeLimit) {
  Task task = interpreterOf(script);
  const Pipe output;
  const Pipe neverRead;
  task.setStandardOutput(output);
  task.setStandardError(neverRead);
  if (!start(task)) return std::nullopt;
  if (!endsWithin(task, timeLimit)) {
    task.terminate();
    platform::logLine("⚠️ AppleScript timed out after " + descriptionOf(timeLimit) + "s");
    return std::nullopt;
  }
  if (task.terminationStatus() != 0) return std::nullopt;
  std::string text = output.readDataToEndOfFile();
  if (!isUtf8(text)) return std::nullopt;
  return text;
}

std::string orEmptyUnlessUtf8(std::string text) {
  return isUtf8(text) ? std::move(text) : std::string();
}

}  // namespace

std::string runScriptCapturing(const std::string& script) {
  const Pipe output;
  Task task;
  task.setLaunchPath(platform::scriptInterpreterPath());
  task.setArguments(argumentsFor(script));
  task.setStandardOutput(output);
  task.launch();
  return orEmptyUnlessUtf8(output.readDataToEndOfFile());
}

std::optional<std::string> runScriptBounded(const std::string& script, double timeLimit) {
  const auto text = outputWithin(script, timeLimit);
  return text ? std::optional<std::string>(trimmed(*text)) : std::nullopt;
}

std::optional<std::string> runFieldScriptBounded(const std::string& script, double timeLimit) {
  const auto text = outputWithin(script, timeLimit);
  return text ? std::optional<std::string>(trimmedUpToTabs(*text)) : std::nullopt;
}

void runScriptDetached(const std::string& script) {
  Task task = interpreterOf(script);
  const Pipe errors;
  task.setStandardError(errors);
  task.setTerminationHandler([errors](int32_t status) {
    if (status == 0) return;
    const std::string text = orEmptyUnlessUtf8(errors.readDataToEndOfFile());
    platform::logLine("⚠️ AppleScript failed (status " + std::to_string(status) + "): " + text);
  });
  start(task);
}

void runScriptInProcess(const std::string& script) {
  const auto program = platform::appleScriptWithSource(script);
  if (program == nullptr) return;
  if (const auto error = platform::executeAppleScript(*program)) {
    printLine("❌ AppleScript Execution Error: " + *error);
  } else {
    printLine("✅ AppleScript Executed: " + script);
  }
}

}  // namespace tapdeck
