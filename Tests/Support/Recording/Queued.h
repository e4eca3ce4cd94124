#pragma once

#include <functional>
#include <map>
#include <vector>

namespace tapdeck::recording {

/// What the recording platform was handed to run later.
struct Queued {
  std::vector<std::function<void()>> global;
  std::vector<std::function<void()>> main;
  std::vector<std::function<void()>> screenObservers;
  /// By their numbers, from 1.
  std::map<int, std::function<void()>> timers;
  int timersMade = 0;
  std::vector<std::function<void()>> downloads;
};

Queued& queued();

/// Events that were handed out before mean nothing any more.
void forgetEvents();

}  // namespace tapdeck::recording
