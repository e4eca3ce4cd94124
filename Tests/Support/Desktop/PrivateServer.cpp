#include "Tests/Support/Desktop/PrivateServer.h"

#include <stdexcept>

namespace tapdeck::testing {
namespace {

std::vector<std::string> commandWith(const std::vector<std::string>& options) {
  std::vector<std::string> command{"Xvfb",       "-displayfd", "1",   "-screen", "0",
                                   "640x480x24", "-nolisten",  "tcp", "-noreset"};
  command.insert(command.end(), options.begin(), options.end());
  return command;
}

}  // namespace

PrivateServer::PrivateServer(const std::vector<std::string>& options)
    : ChildProcess(commandWith(options)) {
  if (!awaitLine()) throw std::runtime_error("Xvfb did not start: " + errors());
  _display = ":" + output();
  _display.pop_back();
}

}  // namespace tapdeck::testing
