#include "Tests/Support/Desktop/ChildProcess.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <stdexcept>

namespace tapdeck::testing {

std::string hostProgram;
std::string callProgram;

ChildProcess::ChildProcess(const std::vector<std::string>& arguments) {
  GSubprocessLauncher* launcher = g_subprocess_launcher_new(G_SUBPROCESS_FLAGS_NONE);
  g_subprocess_launcher_set_stdout_file_path(launcher, (_folder.path / "output").c_str());
  g_subprocess_launcher_set_stderr_file_path(launcher, (_folder.path / "errors").c_str());
  std::vector<const char*> words;
  for (const auto& argument : arguments) words.push_back(argument.c_str());
  words.push_back(nullptr);
  _process = g_subprocess_launcher_spawnv(launcher, words.data(), nullptr);
  g_object_unref(launcher);
  if (_process == nullptr) throw std::runtime_error("cannot start " + arguments.front());
}

ChildProcess::~ChildProcess() {
  kill();
  g_object_unref(_process);
}

void ChildProcess::kill() {
  g_subprocess_force_exit(_process);
  g_subprocess_wait(_process, nullptr, nullptr);
}

int ChildProcess::status() {
  if (!eventually([this] { return !isRunning(); }, std::chrono::seconds(20))) return -1;
  return g_subprocess_get_if_exited(_process) ? g_subprocess_get_exit_status(_process) : -1;
}

bool ChildProcess::awaitLine() const {
  const auto done = [this] { return output().ends_with('\n') || !isRunning(); };
  return eventually(done, std::chrono::seconds(20)) && output().ends_with('\n');
}

std::string ChildProcess::output() const {
  return contentsOf(_folder.path / "output");
}

std::string ChildProcess::errors() const {
  return contentsOf(_folder.path / "errors");
}

RunningHost::RunningHost() : ChildProcess({hostProgram, "--port", "0"}) {
  if (!awaitLine()) throw std::runtime_error("the host does not start: " + errors());
}

RunningHost::~RunningHost() {
  if (!isRunning()) return;
  send(SIGTERM);
  EXPECT_EQ(status(), 0) << errors();
  EXPECT_EQ(errors().find("CRITICAL"), std::string::npos) << errors();
}

std::string call(const std::string& method, const std::string& arguments,
                 const std::string& channel) {
  return outputOf({callProgram, "--channel", channel, method, arguments});
}

std::string outputOf(const std::vector<std::string>& arguments) {
  ChildProcess process(arguments);
  process.status();
  return process.output();
}

}  // namespace tapdeck::testing
