#include "Platform/Queues.h"

#include <dispatch/dispatch.h>

namespace tapdeck::platform {
namespace {

/// Takes the work away, so that what it holds goes where it ran: the queuing thread and the block,
/// which the system may let go of anywhere, keep nothing of it.
dispatch_block_t blockTaking(std::function<void()>& work) {
  const auto waiting = std::make_shared<std::function<void()>>();
  waiting->swap(work);
  return ^{
    @autoreleasepool {
      (*waiting)();
      *waiting = nullptr;
    }
  };
}

qos_class_t qosClass(QualityOfService quality) {
  switch (quality) {
    case QualityOfService::utility:
      return QOS_CLASS_UTILITY;
    case QualityOfService::userInitiated:
      return QOS_CLASS_USER_INITIATED;
  }
}

}  // namespace

void asyncOnMain(std::function<void()> work) {
  dispatch_async(dispatch_get_main_queue(), blockTaking(work));
}

void asyncOnGlobal(QualityOfService quality, std::function<void()> work) {
  dispatch_async(dispatch_get_global_queue(qosClass(quality), 0), blockTaking(work));
}

struct Semaphore::Count {
  dispatch_semaphore_t semaphore;
};

Semaphore::Semaphore() : _count(std::make_shared<Count>(Count{dispatch_semaphore_create(0)})) {}

void Semaphore::signal() {
  dispatch_semaphore_signal(_count->semaphore);
}

bool Semaphore::waitFor(double seconds) {
  const auto nanoseconds = static_cast<int64_t>(seconds * NSEC_PER_SEC);
  const dispatch_time_t end = dispatch_time(DISPATCH_TIME_NOW, nanoseconds);
  return dispatch_semaphore_wait(_count->semaphore, end) == 0;
}

}  // namespace tapdeck::platform
