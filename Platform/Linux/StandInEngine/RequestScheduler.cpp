#include "Platform/Linux/StandInEngine/RequestScheduler.h"

#include <algorithm>
#include <utility>

namespace tapdeck::standin {
namespace {

/// Other sources of the main loop wait for no longer than this, or than a single request takes.
constexpr std::chrono::milliseconds kTimeSlice{2};
/// A connection that was idle goes before the others, but by no more than this.
constexpr std::chrono::milliseconds kHeadStart{20};
/// What may not start yet is asked for again after so long.
constexpr guint kPauseMilliseconds = 5;
constexpr size_t kMaxWaitingBytes = size_t{16} << 10;
constexpr size_t kMaxWaitingRequests = 64;

}  // namespace

void RequestScheduler::add(ConnectionNumber connection, Request request, size_t size) {
  Queue& queue = _queues[connection];
  if (queue.requests.empty()) queue.used = std::max(queue.used, _served - kHeadStart);
  queue.requests.push_back({std::move(request), size});
  queue.bytes += size;
  if (!_source || _isPausing) goOn(/*isPausing=*/false);
}

void RequestScheduler::goOn(bool isPausing) {
  _isPausing = isPausing;
  _source.reset(isPausing ? g_timeout_source_new(kPauseMilliseconds) : g_idle_source_new());
  g_source_set_priority(_source.get(), G_PRIORITY_DEFAULT);
  const GSourceFunc callback = [](gpointer self) noexcept -> gboolean {
    static_cast<RequestScheduler*>(self)->runSlice();
    // it has changed its source where nothing may start, or is gone
    return G_SOURCE_CONTINUE;
  };
  g_source_set_callback(_source.get(), callback, this, nullptr);
  g_source_attach(_source.get(), nullptr);
}

bool RequestScheduler::isFull(ConnectionNumber connection) const {
  const auto queue = _queues.find(connection);
  return queue != _queues.end() && (queue->second.bytes >= kMaxWaitingBytes ||
                                    queue->second.requests.size() >= kMaxWaitingRequests);
}

RequestScheduler::Queues::iterator RequestScheduler::next() {
  auto least = _queues.end();
  for (auto queue = _queues.begin(); queue != _queues.end(); ++queue) {
    if (queue->second.requests.empty()) continue;
    if (!_mayStart(queue->second.requests.front().request)) continue;
    if (least == _queues.end() || queue->second.used < least->second.used) least = queue;
  }
  return least;
}

void RequestScheduler::pauseOrEnd() {
  const bool isEmpty = std::all_of(_queues.begin(), _queues.end(),
                                   [](const auto& queue) { return queue.second.requests.empty(); });
  if (isEmpty) {
    _source.reset();
  } else if (!_isPausing) {
    goOn(/*isPausing=*/true);
  }
}

void RequestScheduler::runSlice() {
  const auto work = _work;
  const std::weak_ptr<const Work> alive = work;
  const auto end = Clock::now() + kTimeSlice;
  do {
    const auto queue = next();
    if (queue == _queues.end()) {
      pauseOrEnd();
      return;
    }
    const ConnectionNumber connection = queue->first;
    Waiting waiting = std::move(queue->second.requests.front());
    queue->second.requests.pop_front();
    queue->second.bytes -= waiting.size;
    _served = std::max(_served, queue->second.used);
    const auto start = Clock::now();
    (*work)(connection, waiting.request);
    if (alive.use_count() < 2) return;
    const auto same = _queues.find(connection);
    if (same != _queues.end()) same->second.used += Clock::now() - start;
  } while (Clock::now() < end);
  if (_isPausing) goOn(/*isPausing=*/false);
}

}  // namespace tapdeck::standin
