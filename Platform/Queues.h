#pragma once

#include <functional>

namespace tapdeck::platform {

/// The global dispatch queues that the host uses, by their quality-of-service class.
enum class QualityOfService { utility, userInitiated };

/// dispatch_async to the main queue: runs `work` later on the main thread, in order. Any thread.
void asyncOnMain(std::function<void()> work);

/// dispatch_async to a global queue: runs `work` on some other thread, in no order. Any thread.
void asyncOnGlobal(QualityOfService quality, std::function<void()> work);

}  // namespace tapdeck::platform
