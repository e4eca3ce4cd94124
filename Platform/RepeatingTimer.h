#pragma once

#include <functional>
#include <memory>

namespace tapdeck::platform {

/// An NSTimer that repeats, scheduled on the current thread's run loop from its creation on. Ended
/// by `invalidate`, or with this object. Main thread only.
class RepeatingTimer {
 public:
  /// Calls `fired` every `interval` seconds; calls that could not be made in time are left out.
  RepeatingTimer(double interval, std::function<void()> fired);
  RepeatingTimer(const RepeatingTimer&) = delete;
  RepeatingTimer& operator=(const RepeatingTimer&) = delete;
  ~RepeatingTimer();

  void invalidate();

 private:
  struct Timer;
  std::unique_ptr<Timer> _timer;
};

}  // namespace tapdeck::platform
