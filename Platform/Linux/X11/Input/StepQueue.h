#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>

#include "Platform/Linux/X11/Keyboard/LiveKeyboard.h"

namespace tapdeck::quartz {

/// Keeps the steps in order. A step that needs nothing is carried out at once; one that has to wait
/// for a change of the keymap, and all after it, are carried out by a thread of the queue, so that
/// one change serves many.
class StepQueue {
 public:
  /// Borrowed keys are given back when none was needed for `idleTime`.
  explicit StepQueue(Connection& output,
                     std::chrono::milliseconds idleTime = std::chrono::seconds(60));
  ~StepQueue();
  StepQueue(const StepQueue&) = delete;
  StepQueue& operator=(const StepQueue&) = delete;

  void add(Step step);
  /// Where the pointer is going to be; absent when no motion waits.
  std::optional<Pixel> waitingMotion();
  /// Waits for what was added, not for ever; then releases and gives back all.
  void letGo();

 private:
  using Lock = std::unique_lock<std::mutex>;
  void run();
  void empty(Lock& lock);
  void gather(Lock& lock);
  void confirmReleases(Lock& lock, std::chrono::steady_clock::time_point due);

  const std::chrono::milliseconds _idleTime;
  LiveKeyboard _keyboard;
  std::mutex _mutex;
  std::condition_variable _changed;
  std::deque<Step> _waiting;
  /// The thread has the keyboard, with or without the lock.
  bool _isBusy = false;
  bool _ends = false;
  std::chrono::steady_clock::time_point _lastAdded;
  std::thread _thread;
};

}  // namespace tapdeck::quartz
