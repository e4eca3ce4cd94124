#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace tapdeck::testing {

/// An Xvfb of the test's own, which it may kill.
class PrivateServer {
 public:
  explicit PrivateServer(std::vector<std::string> options);
  ~PrivateServer() { kill(); }
  PrivateServer(const PrivateServer&) = delete;
  PrivateServer& operator=(const PrivateServer&) = delete;

  /// Such as ":7".
  const std::string& display() const { return _display; }
  /// At once, and waits until it is gone.
  void kill();

 private:
  pid_t _process = -1;
  std::string _display;
};

/// Sets DISPLAY (or takes it away, for nullptr) and puts it back.
class DisplayVariable {
 public:
  explicit DisplayVariable(const char* display);
  ~DisplayVariable();
  DisplayVariable(const DisplayVariable&) = delete;
  DisplayVariable& operator=(const DisplayVariable&) = delete;

 private:
  std::string _before;
};

}  // namespace tapdeck::testing
