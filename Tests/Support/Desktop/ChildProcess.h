#pragma once

#include <gio/gio.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "Platform/Linux/Support/GLibOwners.h"
#include "Tests/Support/MainLoop.h"
#include "Tests/Support/Surroundings.h"

namespace tapdeck::testing {

/// A child process; killed with this object.
class ChildProcess {
 public:
  explicit ChildProcess(const std::vector<std::string>& arguments) {
    const glib::Object<GSubprocessLauncher> launcher(
        g_subprocess_launcher_new(G_SUBPROCESS_FLAGS_NONE));
    g_subprocess_launcher_set_stdout_file_path(launcher.get(), (_folder.path / "output").c_str());
    g_subprocess_launcher_set_stderr_file_path(launcher.get(), (_folder.path / "errors").c_str());
    std::vector<const char*> words;
    for (const auto& argument : arguments) words.push_back(argument.c_str());
    words.push_back(nullptr);
    _process.reset(g_subprocess_launcher_spawnv(launcher.get(), words.data(), nullptr));
    if (_process == nullptr) throw std::runtime_error("cannot start " + arguments.front());
  }
  ~ChildProcess() { kill(); }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  int id() const { return std::atoi(g_subprocess_get_identifier(_process.get())); }
  void send(int signal) { g_subprocess_send_signal(_process.get(), signal); }
  /// At once, and waits until it is gone; the main loop does not run meanwhile.
  void kill() {
    g_subprocess_force_exit(_process.get());
    g_subprocess_wait(_process.get(), nullptr, nullptr);
  }
  bool isRunning() const { return g_subprocess_get_identifier(_process.get()) != nullptr; }
  /// Its exit status, for which the main loop runs; -1 when a signal ended it or it does not end.
  int status() {
    if (!eventually([this] { return !isRunning(); }, std::chrono::seconds(20))) return -1;
    return g_subprocess_get_if_exited(_process.get()) ? g_subprocess_get_exit_status(_process.get())
                                                      : -1;
  }
  /// Runs the main loop until it has written a line; false when it ends before.
  bool awaitLine() const {
    const auto done = [this] { return output().ends_with('\n') || !isRunning(); };
    return eventually(done, std::chrono::seconds(20)) && output().ends_with('\n');
  }
  std::string output() const { return contentsOf(_folder.path / "output"); }
  std::string errors() const { return contentsOf(_folder.path / "errors"); }

 private:
  TemporaryFolder _folder;
  glib::Object<GSubprocess> _process;
};

/// Runs a command to its end and takes its standard output.
inline std::string outputOf(const std::vector<std::string>& arguments) {
  ChildProcess process(arguments);
  process.status();
  return process.output();
}

}  // namespace tapdeck::testing
