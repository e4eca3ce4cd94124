#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

#include "Tests/Desktop/Observer.h"

namespace tapdeck::testing {

/// An application with the keyboard focus that keeps what is typed into it.
class TypingClient {
 public:
  enum class Kind { textView, terminal };

  /// Starts it and waits until it has the focus.
  TypingClient(Kind kind, Observer& observer);
  ~TypingClient();
  TypingClient(const TypingClient&) = delete;
  TypingClient& operator=(const TypingClient&) = delete;

  Kind kind() const { return _kind; }
  /// What came since the last call: waits until it is `expected`, or until nothing more has come
  /// for a long time. A terminal has a carriage return for each line end.
  std::string received(const std::string& expected);
  /// When the last of that came.
  std::chrono::steady_clock::time_point lastChange() const { return _changed; }
  /// To stop its reading, and to let it read on.
  void signal(int number) const;

 private:
  std::string content() const;

  Kind _kind;
  std::filesystem::path _file;
  size_t _seen = 0;
  std::chrono::steady_clock::time_point _changed;
  pid_t _process = -1;
};

}  // namespace tapdeck::testing
