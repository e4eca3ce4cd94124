#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>

#include "Platform/Linux/EngineProtocol/Protocol.h"
#include "Platform/Linux/StandInEngine/EngineTypes.h"

namespace tapdeck::standin {

/// The calls that the host answers later, from background work that cannot be cancelled. Each
/// connection has at most kMaxRunning of them running and kMaxWaiting queued here; the queue goes
/// with its connection. Main thread only.
class BackgroundCalls {
 public:
  static constexpr size_t kMaxRunning = 2;
  static constexpr size_t kMaxWaiting = 32;
  enum class Admission { starts, waits, refused };

  /// Whether the call is one of them.
  static bool includes(const Request& request);

  /// Whether the call may start now. One that waits is kept, and given back by finished().
  Admission admit(ConnectionNumber connection, const Request& request);
  /// A call that has started was answered: the next one, which starts.
  std::optional<Request> finished(ConnectionNumber connection);
  void drop(ConnectionNumber connection) { _connections.erase(connection); }

 private:
  struct Calls {
    size_t running = 0;
    std::deque<Request> waiting;
  };
  std::map<ConnectionNumber, Calls> _connections;
};

}  // namespace tapdeck::standin
