#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tapdeck::platform {

// NSTask and NSPipe: child processes and what they write. Any thread; one object on one thread at a
// time.

/// One pipe. Copies are the same pipe, whose ends are closed with the last of them.
class Pipe {
 public:
  struct Ends;

  Pipe();

  /// readDataToEndOfFile of the reading end: blocks until whatever holds the writing end has closed
  /// it. A task takes the writing end with it when it starts.
  std::string readDataToEndOfFile() const;

 private:
  friend class Task;

  std::shared_ptr<Ends> _ends;
};

/// One child process, to be started once. It goes on when this object goes; nobody has to wait for
/// it. Its standard output and error are this process's own unless a pipe is set for them.
class Task {
 public:
  struct Process;

  Task();
  Task(Task&&) noexcept;
  Task& operator=(Task&&) noexcept;
  ~Task();

  void setLaunchPath(const std::string& path);
  void setExecutableUrl(const std::string& path);
  void setArguments(const std::vector<std::string>& arguments);
  void setStandardOutput(const Pipe& pipe);
  void setStandardError(const Pipe& pipe);
  /// Called once with the termination status, on a thread of the platform's choice, when the child
  /// has ended.
  void setTerminationHandler(std::function<void(int32_t status)> handler);

  /// Starts the child; raises an exception that ends the process when it cannot be started.
  void launch();
  /// launchAndReturnError: the error's description when the child cannot be started, else nothing.
  std::optional<std::string> launchAndReturnError();

  bool isRunning() const;
  /// Asks the child to end, by SIGTERM, and does not wait for it.
  void terminate();
  /// The exit status, or the signal that has ended the child. Only after the child has ended.
  int32_t terminationStatus() const;

 private:
  std::shared_ptr<Process> _process;
};

}  // namespace tapdeck::platform
