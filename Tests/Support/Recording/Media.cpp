// Child processes, scripts, downloads and files, recorded.

#include <stdexcept>
#include <utility>

#include "Platform/Downloads.h"
#include "Platform/Files.h"
#include "Platform/Queues.h"
#include "Platform/Scripts.h"
#include "Platform/Tasks.h"
#include "Tests/Support/Recording/Recording.h"

namespace tapdeck::platform {

using recording::queued;
using recording::record;
using recording::script;

struct Pipe::Ends {
  std::string data;
};

struct Task::Process {
  std::string launchPath;
  std::string executable;
  std::vector<std::string> arguments;
  std::optional<Pipe> output;
  std::optional<Pipe> errors;
  recording::Child child;
  std::optional<double> end;

  std::string describe(const std::string& path) const {
    std::string line = path;
    for (const std::string& argument : arguments) line += " " + argument;
    return line + (output ? " > pipe" : "") + (errors ? " 2> pipe" : "");
  }
};

Pipe::Pipe() : _ends(std::make_shared<Ends>()) {}

std::string Pipe::readDataToEndOfFile() const {
  record("read pipe");
  return _ends->data;
}

Task::Task() : _process(std::make_shared<Process>()) {}
Task::Task(Task&&) noexcept = default;
Task& Task::operator=(Task&&) noexcept = default;
Task::~Task() = default;

void Task::setLaunchPath(const std::string& path) {
  _process->launchPath = path;
}

void Task::setExecutableUrl(const std::string& path) {
  _process->executable = path;
}

void Task::setArguments(const std::vector<std::string>& arguments) {
  _process->arguments = arguments;
}

void Task::setStandardOutput(const Pipe& pipe) {
  _process->output = pipe;
}

void Task::setStandardError(const Pipe& pipe) {
  _process->errors = pipe;
}

void Task::setTerminationHandler(std::function<void(int32_t status)>) {}

void Task::launch() {
  _process->executable = _process->launchPath;
  if (const auto error = launchAndReturnError()) throw std::runtime_error(*error);
}

std::optional<std::string> Task::launchAndReturnError() {
  const bool isLegacy = !_process->launchPath.empty();
  record((isLegacy ? "launch " : "start ") + _process->describe(_process->executable));
  if (script().media.launchError) return script().media.launchError;
  const recording::Child child = script().media.childFor(_process->arguments.back());
  _process->child = child;
  _process->end = script().uptime + child.seconds;
  if (_process->output) _process->output->_ends->data = child.output;
  return std::nullopt;
}

bool Task::isRunning() const {
  return _process->end && script().uptime < *_process->end;
}

void Task::terminate() {
  record("terminate");
}

int32_t Task::terminationStatus() const {
  return _process->child.status;
}

struct AppleScript {
  std::string source;
};

std::string scriptInterpreterPath() {
  return "/usr/bin/osascript";
}

std::shared_ptr<AppleScript> appleScriptWithSource(const std::string& source) {
  if (script().media.appleScriptFails) return nullptr;
  return std::make_shared<AppleScript>(AppleScript{source});
}

std::optional<std::string> executeAppleScript(AppleScript& script) {
  record("execute " + script.source);
  return recording::script().media.appleScriptError;
}

void startDataTask(const URL& url, double timeoutInterval, DataCompletion completed) {
  record("download " + url.text + " within " + std::to_string(timeoutInterval));
  queued().downloads.emplace_back(
      [completed = std::move(completed)] { completed(script().media.download); });
}

struct Semaphore::Count {
  int count = 0;
};

Semaphore::Semaphore() : _count(std::make_shared<Count>()) {}

void Semaphore::signal() {
  ++_count->count;
}

bool Semaphore::waitFor(double seconds) {
  record("wait " + std::to_string(seconds));
  if (script().media.downloadSeconds <= seconds) recording::completeDownloads();
  if (_count->count == 0) return false;
  --_count->count;
  return true;
}

std::string temporaryDirectory() {
  return "/var/folders/me/T";
}

std::optional<std::vector<uint8_t>> contentsAtPath(const std::string& path) {
  record("read " + path);
  return recording::at(script().media.files, path);
}

void removeItem(const std::string& path) {
  record("remove " + path);
}

}  // namespace tapdeck::platform
