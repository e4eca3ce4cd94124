#include "Platform/Queues.h"

#include <dispatch/dispatch.h>

namespace tapdeck::platform {
namespace {

dispatch_block_t blockOf(std::function<void()> work) {
  return ^{
    @autoreleasepool {
      work();
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
  dispatch_async(dispatch_get_main_queue(), blockOf(std::move(work)));
}

void asyncOnGlobal(QualityOfService quality, std::function<void()> work) {
  dispatch_async(dispatch_get_global_queue(qosClass(quality), 0), blockOf(std::move(work)));
}

}  // namespace tapdeck::platform
