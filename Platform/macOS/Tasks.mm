#include "Platform/Tasks.h"

#import <Foundation/Foundation.h>

#import "Platform/macOS/Strings.h"

namespace tapdeck::platform {

struct Pipe::Ends {
  NSPipe* pipe;
};

struct Task::Process {
  NSTask* task;
};

Pipe::Pipe() : _ends(std::make_shared<Ends>(Ends{[NSPipe pipe]})) {}

std::string Pipe::readDataToEndOfFile() const {
  NSData* data = [_ends->pipe.fileHandleForReading readDataToEndOfFile];
  return std::string(static_cast<const char*>(data.bytes), data.length);
}

Task::Task() : _process(std::make_shared<Process>(Process{[[NSTask alloc] init]})) {}
Task::Task(Task&&) noexcept = default;
Task& Task::operator=(Task&&) noexcept = default;
Task::~Task() = default;

// NSTask's older half, kept for what it does when a program cannot be started: it raises
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

void Task::setLaunchPath(const std::string& path) {
  _process->task.launchPath = stringFromUtf8(path);
}

void Task::launch() {
  [_process->task launch];
}

#pragma clang diagnostic pop

void Task::setExecutableUrl(const std::string& path) {
  NSString* place = stringFromUtf8(path);
  if (place != nil) _process->task.executableURL = [NSURL fileURLWithPath:place];
}

void Task::setArguments(const std::vector<std::string>& arguments) {
  NSMutableArray<NSString*>* strings = [NSMutableArray arrayWithCapacity:arguments.size()];
  for (const std::string& argument : arguments) {
    NSString* string = stringFromUtf8(argument);
    if (string != nil) [strings addObject:string];
  }
  _process->task.arguments = strings;
}

void Task::setStandardOutput(const Pipe& pipe) {
  _process->task.standardOutput = pipe._ends->pipe;
}

void Task::setStandardError(const Pipe& pipe) {
  _process->task.standardError = pipe._ends->pipe;
}

void Task::setTerminationHandler(std::function<void(int32_t status)> handler) {
  // nobody else may hold the task by then, and one that is gone may not tell of its end
  __block NSTask* kept = _process->task;
  kept.terminationHandler = ^(NSTask* ended) {
    @autoreleasepool {
      handler(ended.terminationStatus);
    }
    kept = nil;
  };
}

std::optional<std::string> Task::launchAndReturnError() {
  NSError* error = nil;
  if ([_process->task launchAndReturnError:&error]) return std::nullopt;
  _process->task.terminationHandler = nil;  // never runs, and holds the task
  return utf8FromString(error.description);
}

bool Task::isRunning() const {
  return _process->task.running;
}

void Task::terminate() {
  [_process->task terminate];
}

int32_t Task::terminationStatus() const {
  return _process->task.terminationStatus;
}

}  // namespace tapdeck::platform
