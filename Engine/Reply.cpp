#include "Engine/Reply.h"

#include <cstdio>
#include <utility>

namespace tapdeck {
namespace {

std::function<void(const char*)>& misuseHandler() {
  static std::function<void(const char*)> handler;
  return handler;
}

void reportMisuse(const char* what) {
  if (misuseHandler()) {
    misuseHandler()(what);
  } else {
    std::fprintf(stderr, "❌ %s\n", what);
  }
}

}  // namespace

Reply::Reply(Sink sink) : _sink(std::move(sink)) {}

Reply::Reply(Reply&& other) noexcept
    : _sink(std::move(other._sink)), _state(std::exchange(other._state, State::movedFrom)) {}

Reply& Reply::operator=(Reply&& other) noexcept {
  if (this != &other) {
    dropUnanswered();
    _sink = std::move(other._sink);
    _state = std::exchange(other._state, State::movedFrom);
  }
  return *this;
}

Reply::~Reply() {
  dropUnanswered();
}

void Reply::success(Value value) {
  answer(std::move(value));
}

void Reply::error(std::string code, std::string message, Value details) {
  answer(MethodError{std::move(code), std::move(message), std::move(details)});
}

void Reply::notImplemented() {
  answer(NotImplemented{});
}

void Reply::answer(Outcome outcome) {
  if (_state != State::open) {
    reportMisuse(_state == State::answered ? "a call was answered twice"
                                           : "a call was answered through a reply that moved on");
    return;
  }
  _state = State::answered;
  std::exchange(_sink, nullptr)(std::move(outcome));
}

void Reply::dropUnanswered() noexcept {
  if (_state != State::open) return;
  reportMisuse("a call's reply was dropped unanswered");
  answer(Value());
}

void Reply::setMisuseHandler(std::function<void(const char* what)> handler) {
  misuseHandler() = std::move(handler);
}

}  // namespace tapdeck
