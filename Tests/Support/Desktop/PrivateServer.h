#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "Tests/Support/Desktop/ChildProcess.h"

namespace tapdeck::testing {

/// An Xvfb of the test's own, which it may kill.
class PrivateServer : public ChildProcess {
 public:
  explicit PrivateServer(const std::vector<std::string>& options)
      : ChildProcess(commandWith(options)) {
    if (!awaitLine()) throw std::runtime_error("Xvfb did not start: " + errors());
    _display = ":" + output();
    _display.pop_back();
  }

  const std::string& display() const { return _display; }

 private:
  static std::vector<std::string> commandWith(const std::vector<std::string>& options) {
    std::vector<std::string> command{"Xvfb",       "-displayfd", "1",   "-screen", "0",
                                     "640x480x24", "-nolisten",  "tcp", "-noreset"};
    command.insert(command.end(), options.begin(), options.end());
    return command;
  }

  std::string _display;
};

/// Sets DISPLAY (or takes it away, for nullptr) and puts it back.
struct DisplayVariable : EnvironmentVariable {
  explicit DisplayVariable(const char* display) : EnvironmentVariable("DISPLAY", display) {}
};

}  // namespace tapdeck::testing
