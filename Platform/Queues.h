#pragma once

#include <functional>
#include <memory>

namespace tapdeck::platform {

/// The global dispatch queues that the host uses, by their quality-of-service class.
enum class QualityOfService { utility, userInitiated };

/// dispatch_async to the main queue: runs `work` later on the main thread, in order. Any thread.
void asyncOnMain(std::function<void()> work);

/// dispatch_async to a global queue: runs `work` on some other thread, in no order. Any thread.
void asyncOnGlobal(QualityOfService quality, std::function<void()> work);

/// A dispatch semaphore, created with count 0. Any thread.
class Semaphore {
 public:
  struct Count;

  Semaphore();

  void signal();
  /// dispatch_semaphore_wait until now plus this many seconds; false when no signal came in time.
  bool waitFor(double seconds);

 private:
  std::shared_ptr<Count> _count;
};

}  // namespace tapdeck::platform
