#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

#include "Tests/Support/Desktop/ChildProcess.h"
#include "Tests/Support/Desktop/Observer.h"

namespace tapdeck::testing {

/// An application with the keyboard focus that keeps what is typed into it.
class TypingClient {
 public:
  enum class Kind { textView, qtView, terminal };

  /// Starts it and waits until it has the focus.
  TypingClient(Kind kind, Observer& observer);

  /// What came since the last call: waits until it is `expected`, or until nothing more has come
  /// for a long time. A terminal has a carriage return for each line end.
  std::string received(const std::string& expected);
  /// When the last of that came.
  std::chrono::steady_clock::time_point lastChange() const { return _changed; }

 private:
  Kind _kind;
  TemporaryFolder _folder;
  std::filesystem::path _file;
  size_t _seen = 0;
  std::chrono::steady_clock::time_point _changed;
  std::optional<ChildProcess> _process;
};

}  // namespace tapdeck::testing
