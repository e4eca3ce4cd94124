#include "Platform/Linux/StandInEngine/Turns.h"

#include <algorithm>
#include <utility>

namespace tapdeck::standin {
namespace {

/// As long as other sources of the main loop may have to wait, apart from a single long request.
constexpr std::chrono::milliseconds kTurn{2};
/// A connection that was idle comes before those that were not, but cannot save up more than this.
constexpr std::chrono::milliseconds kHeadStart{20};
/// What may not start yet is asked for again after so long.
constexpr guint kPauseMilliseconds = 5;
constexpr size_t kMaxWaitingBytes = size_t{16} << 10;
constexpr size_t kMaxWaitingRequests = 64;

}  // namespace

void Turns::add(ConnectionNumber connection, Request request, size_t size) {
  Lane& lane = _lanes[connection];
  if (lane.requests.empty()) lane.used = std::max(lane.used, _served - kHeadStart);
  lane.requests.push_back({std::move(request), size});
  lane.bytes += size;
  if (!_source || _isPausing) goOn(/*isPausing=*/false);
}

void Turns::goOn(bool isPausing) {
  _isPausing = isPausing;
  _source.reset(isPausing ? g_timeout_source_new(kPauseMilliseconds) : g_idle_source_new());
  g_source_set_priority(_source.get(), G_PRIORITY_DEFAULT);
  const GSourceFunc callback = [](gpointer self) noexcept -> gboolean {
    static_cast<Turns*>(self)->takeTurn();
    // it has changed its source where nothing may start, or is gone
    return G_SOURCE_CONTINUE;
  };
  g_source_set_callback(_source.get(), callback, this, nullptr);
  g_source_attach(_source.get(), nullptr);
}

bool Turns::isFull(ConnectionNumber connection) const {
  const auto lane = _lanes.find(connection);
  return lane != _lanes.end() && (lane->second.bytes >= kMaxWaitingBytes ||
                                  lane->second.requests.size() >= kMaxWaitingRequests);
}

Turns::Lanes::iterator Turns::next() {
  auto least = _lanes.end();
  for (auto lane = _lanes.begin(); lane != _lanes.end(); ++lane) {
    if (lane->second.requests.empty()) continue;
    if (!_mayStart(lane->second.requests.front().request)) continue;
    if (least == _lanes.end() || lane->second.used < least->second.used) least = lane;
  }
  return least;
}

void Turns::pauseOrEnd() {
  const bool isEmpty = std::all_of(_lanes.begin(), _lanes.end(),
                                   [](const auto& lane) { return lane.second.requests.empty(); });
  if (isEmpty) {
    _source.reset();
  } else if (!_isPausing) {
    goOn(/*isPausing=*/true);
  }
}

void Turns::takeTurn() {
  const auto work = _work;
  const std::weak_ptr<const Work> alive = work;
  const auto end = Clock::now() + kTurn;
  do {
    const auto lane = next();
    if (lane == _lanes.end()) {
      pauseOrEnd();
      return;
    }
    const ConnectionNumber connection = lane->first;
    Waiting waiting = std::move(lane->second.requests.front());
    lane->second.requests.pop_front();
    lane->second.bytes -= waiting.size;
    _served = std::max(_served, lane->second.used);
    const auto start = Clock::now();
    (*work)(connection, waiting.request);
    if (alive.use_count() < 2) return;
    const auto same = _lanes.find(connection);
    if (same != _lanes.end()) same->second.used += Clock::now() - start;
  } while (Clock::now() < end);
  if (_isPausing) goOn(/*isPausing=*/false);
}

}  // namespace tapdeck::standin
