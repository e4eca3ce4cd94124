#pragma once

#include <functional>
#include <string>
#include <variant>

#include "Engine/Value.h"

namespace tapdeck {

/// A failed call's record: a code for programs, a message for people, details of any kind (null
/// when there are none).
struct MethodError {
  std::string code;
  std::string message;
  Value details;
  friend bool operator==(const MethodError&, const MethodError&) = default;
};

/// The distinguished reply that means that a channel has no such method.
struct NotImplemented {
  friend bool operator==(const NotImplemented&, const NotImplemented&) = default;
};

/// What one call came to.
using Outcome = std::variant<Value, MethodError, NotImplemented>;

/// The right to answer one call, once. It can be moved to where the answer is found, and answered
/// on the main thread only.
///
/// Dropping it unanswered or answering it twice is a programming error: it is reported to the
/// misuse handler, the second answer is discarded, and a caller whose reply was dropped gets null,
/// so that no caller waits for ever.
class Reply {
 public:
  using Sink = std::function<void(Outcome)>;
  /// `sink` takes the one outcome; it must not be empty.
  explicit Reply(Sink sink);
  Reply(Reply&& other) noexcept;
  Reply& operator=(Reply&& other) noexcept;
  Reply(const Reply&) = delete;
  Reply& operator=(const Reply&) = delete;
  ~Reply();

  void success(Value value = Value());
  void error(std::string code, std::string message, Value details = Value());
  void notImplemented();
  void answer(Outcome outcome);

  /// Takes the place of the line on standard error that reports a misuse; an empty handler puts the
  /// line back. Meant for tests.
  static void setMisuseHandler(std::function<void(const char* what)> handler);

 private:
  enum class State { open, answered, movedFrom };
  void dropUnanswered() noexcept;

  Sink _sink;
  State _state = State::open;
};

}  // namespace tapdeck
