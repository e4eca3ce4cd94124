#include "Platform/Linux/Fronts/Queues.h"

#include <glib.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <utility>

#include "Platform/Linux/Support/HandOver.h"

namespace tapdeck::platform {

namespace {

using Work = std::function<void()>;

gboolean runOnMain(gpointer work) noexcept {
  takeOver(work);
  (*static_cast<Work*>(work))();
  return G_SOURCE_REMOVE;
}

void deleteWork(gpointer work) noexcept {
  delete static_cast<Work*>(work);
}

/// The threads behind the global queues, a pool for each class so that slow utility work never
/// holds up what the user waits for.
class GlobalQueues {
 public:
  GlobalQueues() : _utility(newPool()), _userInitiated(newPool()) {}

  void add(QualityOfService quality, Work work) {
    {
      const std::lock_guard lock(_mutex);
      ++_unfinished;
    }
    auto* const handed = new Work(std::move(work));
    handOver(handed);
    // A thread that cannot be started now leaves the work queued for the next one, so the error
    // needs no handling.
    g_thread_pool_push(quality == QualityOfService::utility ? _utility : _userInitiated, handed,
                       nullptr);
  }

  bool finish(std::chrono::milliseconds atMost) {
    std::unique_lock lock(_mutex);
    return _allFinished.wait_for(lock, atMost, [this] { return _unfinished == 0; });
  }

 private:
  static constexpr int kThreadsPerPool = 4;

  GThreadPool* newPool() { return g_thread_pool_new(run, this, kThreadsPerPool, FALSE, nullptr); }

  static void run(gpointer work, gpointer self) noexcept {
    auto* queues = static_cast<GlobalQueues*>(self);
    takeOver(work);
    {
      const std::unique_ptr<Work> owned(static_cast<Work*>(work));
      (*owned)();
    }
    const std::lock_guard lock(queues->_mutex);
    if (--queues->_unfinished == 0) queues->_allFinished.notify_all();
  }

  std::mutex _mutex;
  std::condition_variable _allFinished;
  int _unfinished = 0;
  GThreadPool* _utility;
  GThreadPool* _userInitiated;
};

GlobalQueues& globalQueues() {
  // Never destroyed: a thread may still be in it while the process ends.
  static auto* queues = new GlobalQueues;
  return *queues;
}

}  // namespace

void asyncOnMain(std::function<void()> work) {
  auto* const handed = new Work(std::move(work));
  handOver(handed);
  g_idle_add_full(G_PRIORITY_DEFAULT, runOnMain, handed, deleteWork);
}

void asyncOnGlobal(QualityOfService quality, std::function<void()> work) {
  globalQueues().add(quality, std::move(work));
}

struct Semaphore::Count {
  std::mutex mutex;
  std::condition_variable signalled;
  int count = 0;
};

Semaphore::Semaphore() : _count(std::make_shared<Count>()) {}

void Semaphore::signal() {
  const std::lock_guard lock(_count->mutex);
  ++_count->count;
  _count->signalled.notify_one();
}

bool Semaphore::waitFor(double seconds) {
  std::unique_lock lock(_count->mutex);
  const bool came = _count->signalled.wait_for(lock, std::chrono::duration<double>(seconds),
                                               [this] { return _count->count > 0; });
  if (came) --_count->count;
  return came;
}

bool finishGlobalQueues(std::chrono::milliseconds atMost) {
  return globalQueues().finish(atMost);
}

}  // namespace tapdeck::platform
