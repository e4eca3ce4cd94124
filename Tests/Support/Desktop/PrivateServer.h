#pragma once

#include <string>
#include <vector>

#include "Tests/Support/Desktop/ChildProcess.h"

namespace tapdeck::testing {

/// An Xvfb of the test's own, which it may kill.
class PrivateServer : public ChildProcess {
 public:
  explicit PrivateServer(const std::vector<std::string>& options);

  const std::string& display() const { return _display; }

 private:
  std::string _display;
};

/// Sets DISPLAY (or takes it away, for nullptr) and puts it back.
struct DisplayVariable : EnvironmentVariable {
  explicit DisplayVariable(const char* display) : EnvironmentVariable("DISPLAY", display) {}
};

}  // namespace tapdeck::testing
