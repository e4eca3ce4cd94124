#include "Tests/Desktop/PrivateServer.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

namespace tapdeck::testing {

PrivateServer::PrivateServer(std::vector<std::string> options) {
  std::array<int, 2> numberPipe{};
  if (pipe(numberPipe.data()) != 0) throw std::runtime_error("pipe");
  options.insert(options.begin(), {"Xvfb", "-displayfd", std::to_string(numberPipe[1]), "-screen",
                                   "0", "640x480x24", "-nolisten", "tcp", "-noreset"});
  std::vector<char*> arguments;
  arguments.reserve(options.size() + 1);
  for (auto& option : options) arguments.push_back(option.data());
  arguments.push_back(nullptr);

  _process = fork();
  if (_process == 0) {
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDERR_FILENO);
    execvp("Xvfb", arguments.data());
    _exit(127);
  }
  close(numberPipe[1]);
  pollfd ready = {numberPipe[0], POLLIN, 0};
  std::array<char, 16> number{};
  const bool answers =
      poll(&ready, 1, 20000) > 0 && read(numberPipe[0], number.data(), number.size() - 1) > 0;
  close(numberPipe[0]);
  if (!answers) {
    kill();
    throw std::runtime_error("Xvfb did not start");
  }
  _display.assign(1, ':').append(std::to_string(std::atoi(number.data())));
}

void PrivateServer::kill() {
  if (_process <= 0) return;
  ::kill(_process, SIGKILL);
  waitpid(_process, nullptr, 0);
  _process = -1;
  // the next server cleans up after a number whose process is gone
}

DisplayVariable::DisplayVariable(const char* display) {
  if (const char* before = std::getenv("DISPLAY")) _before = before;
  if (display == nullptr) {
    unsetenv("DISPLAY");
  } else {
    setenv("DISPLAY", display, 1);
  }
}

DisplayVariable::~DisplayVariable() {
  setenv("DISPLAY", _before.c_str(), 1);
}

}  // namespace tapdeck::testing
