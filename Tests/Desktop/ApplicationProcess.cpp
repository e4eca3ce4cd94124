#include "Tests/Desktop/ApplicationProcess.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace tapdeck::testing {

namespace {

std::string contentsOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

std::string hostProgram;
std::string callProgram;

bool loopUntil(const std::function<bool()>& holds, std::chrono::seconds atMost) {
  const auto end = std::chrono::steady_clock::now() + atMost;
  while (!holds()) {
    if (std::chrono::steady_clock::now() > end) return false;
    if (g_main_context_iteration(nullptr, FALSE) == FALSE) g_usleep(1000);
  }
  return true;
}

TemporaryFolder::TemporaryFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "application.XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("mkdtemp");
  path = name;
}

ChildProcess::ChildProcess(std::vector<std::string> arguments, std::vector<Variable> variables) {
  GSubprocessLauncher* launcher = g_subprocess_launcher_new(G_SUBPROCESS_FLAGS_NONE);
  g_subprocess_launcher_set_stdout_file_path(launcher, (_folder.path / "output").c_str());
  g_subprocess_launcher_set_stderr_file_path(launcher, (_folder.path / "errors").c_str());
  for (const auto& [name, value] : variables) {
    if (value == nullptr) {
      g_subprocess_launcher_unsetenv(launcher, name.c_str());
    } else {
      g_subprocess_launcher_setenv(launcher, name.c_str(), value, TRUE);
    }
  }
  std::vector<const char*> words;
  for (const auto& argument : arguments) words.push_back(argument.c_str());
  words.push_back(nullptr);
  _process = g_subprocess_launcher_spawnv(launcher, words.data(), nullptr);
  g_object_unref(launcher);
  if (_process == nullptr) throw std::runtime_error("cannot start " + arguments.front());
  g_subprocess_wait_async(
      _process, nullptr,
      [](GObject*, GAsyncResult*, gpointer ended) { *static_cast<bool*>(ended) = true; }, &_ended);
}

ChildProcess::~ChildProcess() {
  g_subprocess_force_exit(_process);
  loopUntil([this] { return _ended; });
  g_object_unref(_process);
}

int ChildProcess::id() const {
  return std::atoi(g_subprocess_get_identifier(_process));
}

void ChildProcess::send(int signal) {
  g_subprocess_send_signal(_process, signal);
}

int ChildProcess::status() {
  if (!loopUntil([this] { return _ended; }, std::chrono::seconds(20))) return -1;
  return g_subprocess_get_if_exited(_process) ? g_subprocess_get_exit_status(_process) : -1;
}

std::string ChildProcess::output() const {
  return contentsOf(_folder.path / "output");
}

std::string ChildProcess::errors() const {
  return contentsOf(_folder.path / "errors");
}

std::string outputOf(std::vector<std::string> arguments) {
  ChildProcess process(std::move(arguments));
  process.status();
  return process.output();
}

}  // namespace tapdeck::testing
