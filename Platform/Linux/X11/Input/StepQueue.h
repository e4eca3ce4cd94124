#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>

#include "Platform/Linux/X11/Keyboard/LiveKeyboard.h"

namespace tapdeck::x11 {

/// Keeps steps in order. A step that needs no change of the keymap is sent at once by the caller's
/// thread; one that does, and all that follow it, are sent by the queue's own thread, so that one
/// change serves many.
class StepQueue {
 public:
  /// Borrowed keys are given back when none was needed for `idleTime`.
  explicit StepQueue(Connection& output,
                     std::chrono::milliseconds idleTime = std::chrono::seconds(60));
  ~StepQueue();
  StepQueue(const StepQueue&) = delete;
  StepQueue& operator=(const StepQueue&) = delete;

  void add(Step step);
  /// Whether the press of a button still waits to be sent.
  bool isPressWaiting();
  /// The position to which queued steps will move the pointer; absent when none will.
  std::optional<Pixel> waitingMotion();
  /// Waits some seconds at most for queued steps; then releases what is pressed and restores locks
  /// and keymap.
  void releaseEverything();

 private:
  using Lock = std::unique_lock<std::mutex>;
  void run();
  void drain(Lock& lock);
  void gather(Lock& lock);
  void confirmReleases(Lock& lock, std::chrono::steady_clock::time_point due);

  const std::chrono::milliseconds _idleTime;
  LiveKeyboard _keyboard;
  std::mutex _mutex;
  std::condition_variable _changed;
  std::deque<Step> _waiting;
  /// The queue's thread uses `_keyboard`, even while it does not hold the lock.
  bool _isBusy = false;
  bool _isStopping = false;
  std::chrono::steady_clock::time_point _lastAdded;
  std::thread _thread;
};

}  // namespace tapdeck::x11
