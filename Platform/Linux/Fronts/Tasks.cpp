#include "Platform/Tasks.h"

#include <fcntl.h>
#include <gio/gio.h>
#include <glib-unix.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

#include "Platform/Linux/Support/FileDescriptor.h"
#include "Platform/Linux/Support/GLibOwners.h"
#include "Platform/ProcessInfo.h"
#include "Platform/Queues.h"

namespace tapdeck::platform {

using glib::Error;
using glib::Object;

// ---- pipes

struct Pipe::Ends {
  /// Neither is open where there was no descriptor left for them.
  FileDescriptor reading;
  FileDescriptor writing;
};

Pipe::Pipe() : _ends(std::make_shared<Ends>()) {
  std::array<int, 2> ends = {-1, -1};
  if (g_unix_open_pipe(ends.data(), FD_CLOEXEC, nullptr) == FALSE) return;
  _ends->reading = FileDescriptor(ends[0]);
  _ends->writing = FileDescriptor(ends[1]);
}

std::string Pipe::readDataToEndOfFile() const {
  constexpr size_t chunk = 4096;
  std::string data;
  std::array<char, chunk> buffer;
  while (true) {
    const ssize_t count = read(_ends->reading.get(), buffer.data(), buffer.size());
    if (count > 0) {
      data.append(buffer.data(), static_cast<size_t>(count));
    } else if (count == 0 || errno != EINTR) {
      return data;
    }
  }
}

// ---- tasks

struct Task::Process {
  std::string path;
  std::vector<std::string> arguments;
  std::optional<Pipe> standardOutput;
  std::optional<Pipe> standardError;
  std::function<void(int32_t)> terminationHandler;
  /// Null until the child is started. GLib's own thread reaps it, whether or not this lives.
  Object<GSubprocess> child;
};

namespace {

int32_t statusOf(GSubprocess* ended) {
  return g_subprocess_get_if_exited(ended) != FALSE ? g_subprocess_get_exit_status(ended)
                                                    : g_subprocess_get_term_sig(ended);
}

using Handler = std::function<void(int32_t)>;

void childEnded(GObject* source, GAsyncResult* result, gpointer data) noexcept {
  const std::unique_ptr<Handler> handler(static_cast<Handler*>(data));
  auto* child = G_SUBPROCESS(source);
  g_subprocess_wait_finish(child, result, nullptr);
  // what it does may block, and this is the main thread
  asyncOnGlobal(QualityOfService::utility,
                [handler = std::move(*handler), status = statusOf(child)] { handler(status); });
}

std::vector<const char*> commandOf(const std::string& path,
                                   const std::vector<std::string>& arguments) {
  std::vector<const char*> command = {path.c_str()};
  for (const std::string& argument : arguments) command.push_back(argument.c_str());
  command.push_back(nullptr);
  return command;
}

}  // namespace

Task::Task() : _process(std::make_shared<Process>()) {}
Task::Task(Task&&) noexcept = default;
Task& Task::operator=(Task&&) noexcept = default;
Task::~Task() = default;

void Task::setLaunchPath(const std::string& path) {
  _process->path = path;
}

void Task::setExecutableUrl(const std::string& path) {
  _process->path = path;
}

void Task::setArguments(const std::vector<std::string>& arguments) {
  _process->arguments = arguments;
}

void Task::setStandardOutput(const Pipe& pipe) {
  _process->standardOutput = pipe;
}

void Task::setStandardError(const Pipe& pipe) {
  _process->standardError = pipe;
}

void Task::setTerminationHandler(std::function<void(int32_t status)> handler) {
  _process->terminationHandler = std::move(handler);
}

void Task::launch() {
  if (const auto error = launchAndReturnError()) stopProcess(*error);
}

std::optional<std::string> Task::launchAndReturnError() {
  const Object<GSubprocessLauncher> launcher(g_subprocess_launcher_new(G_SUBPROCESS_FLAGS_NONE));
  // the launcher closes this process's copies of the ends that the child writes to
  if (auto& pipe = _process->standardOutput) {
    g_subprocess_launcher_take_stdout_fd(launcher.get(), pipe->_ends->writing.release());
  }
  if (auto& pipe = _process->standardError) {
    g_subprocess_launcher_take_stderr_fd(launcher.get(), pipe->_ends->writing.release());
  }
  GError* error = nullptr;
  _process->child.reset(g_subprocess_launcher_spawnv(
      launcher.get(), commandOf(_process->path, _process->arguments).data(), &error));
  if (const Error failure{error}) return failure->message;
  if (_process->terminationHandler) {
    g_subprocess_wait_async(_process->child.get(), nullptr, childEnded,
                            new Handler(std::move(_process->terminationHandler)));
  }
  return std::nullopt;
}

bool Task::isRunning() const {
  GSubprocess* child = _process->child.get();
  return child != nullptr && g_subprocess_get_identifier(child) != nullptr;
}

void Task::terminate() {
  if (_process->child != nullptr) g_subprocess_send_signal(_process->child.get(), SIGTERM);
}

int32_t Task::terminationStatus() const {
  // it has ended, so that this returns at once
  g_subprocess_wait(_process->child.get(), nullptr, nullptr);
  return statusOf(_process->child.get());
}

}  // namespace tapdeck::platform
