#pragma once

#include <gio/gio.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tapdeck::testing {

/// The executables of the host and of the calls to it, from the command line.
extern std::string hostProgram;
extern std::string callProgram;

/// Runs the main loop until the condition holds; false when it does not in time.
bool loopUntil(const std::function<bool()>& holds,
               std::chrono::seconds atMost = std::chrono::seconds(10));

/// A folder that goes with its contents.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder() { std::filesystem::remove_all(path); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  std::filesystem::path path;
};

/// A child process; killed with this object. The main loop runs while something is waited for.
class ChildProcess {
 public:
  /// A variable of the environment with its value; a null value takes it away.
  using Variable = std::pair<std::string, const char*>;
  explicit ChildProcess(std::vector<std::string> arguments, std::vector<Variable> variables = {});
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  int id() const;
  void send(int signal);
  bool isRunning() const { return !_ended; }
  /// Its exit status; -1 when a signal ended it or it does not end in time.
  int status();
  /// What it wrote so far.
  std::string output() const;
  std::string errors() const;

 private:
  TemporaryFolder _folder;
  GSubprocess* _process = nullptr;
  bool _ended = false;
};

/// Runs a command to its end and takes its standard output.
std::string outputOf(std::vector<std::string> arguments);

}  // namespace tapdeck::testing
