#pragma once

#include <gio/gio.h>

#include <string>
#include <vector>

#include "Engine/Channels.h"
#include "Tests/Support/MainLoop.h"
#include "Tests/Support/Surroundings.h"

namespace tapdeck::testing {

/// The executables of the host and of the calls to it, from the command line.
extern std::string hostProgram;
extern std::string callProgram;

/// A child process; killed with this object.
class ChildProcess {
 public:
  explicit ChildProcess(const std::vector<std::string>& arguments);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  int id() const { return std::atoi(g_subprocess_get_identifier(_process)); }
  void send(int signal) { g_subprocess_send_signal(_process, signal); }
  /// At once, and waits until it is gone; the main loop does not run meanwhile.
  void kill();
  bool isRunning() const { return g_subprocess_get_identifier(_process) != nullptr; }
  /// Its exit status, for which the main loop runs; -1 when a signal ended it or it does not end.
  int status();
  /// Runs the main loop until it has written a line; false when it ends before.
  bool awaitLine() const;
  std::string output() const;
  std::string errors() const;

 private:
  TemporaryFolder _folder;
  GSubprocess* _process;
};

/// A host on the display at hand, ready to be called. When it goes, it ends by itself and well.
struct RunningHost : ChildProcess {
  RunningHost();
  ~RunningHost();
};

/// What tapdeck-call prints of the reply.
std::string call(const std::string& method, const std::string& arguments = "null",
                 const std::string& channel = kControlChannel);

/// Runs a command to its end and takes its standard output.
std::string outputOf(const std::vector<std::string>& arguments);

}  // namespace tapdeck::testing
