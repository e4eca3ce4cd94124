#include "Platform/Linux/StandInEngine/BackgroundCalls.h"

#include <utility>

#include "Engine/Channels.h"

namespace tapdeck::standin {

bool BackgroundCalls::includes(const Request& request) {
  return request.channel == kControlChannel &&
         (request.call.method == "getNowPlaying" || request.call.method == "mediaSeek");
}

BackgroundCalls::Admission BackgroundCalls::admit(ConnectionNumber connection,
                                                  const Request& request) {
  Calls& calls = _connections[connection];
  if (calls.running < kMaxRunning) {
    ++calls.running;
    return Admission::starts;
  }
  if (calls.waiting.size() >= kMaxWaiting) return Admission::refused;
  calls.waiting.push_back(request);
  return Admission::waits;
}

std::optional<Request> BackgroundCalls::finished(ConnectionNumber connection) {
  const auto found = _connections.find(connection);
  if (found == _connections.end()) return std::nullopt;
  Calls& calls = found->second;
  if (calls.waiting.empty()) {
    --calls.running;
    return std::nullopt;
  }
  Request next = std::move(calls.waiting.front());
  calls.waiting.pop_front();
  return next;
}

}  // namespace tapdeck::standin
