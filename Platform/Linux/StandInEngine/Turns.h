#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>

#include "Platform/Linux/EngineProtocol/Protocol.h"
#include "Platform/Linux/StandInEngine/Handles.h"

namespace tapdeck::standin {

/// Shares the main thread between connections: requests wait here and are carried out from the
/// default main context, each time for a few milliseconds. The connection that has used the least
/// time is next; the order within a connection is kept. Main thread only.
class Turns {
 public:
  using ConnectionNumber = uint64_t;
  /// Carries out one request. The connection may have ended in the meantime.
  using Work = std::function<void(ConnectionNumber, const Request&)>;
  /// Whether a request may be carried out yet. Its connection waits until then, the others go on.
  using MayStart = std::function<bool(const Request&)>;

  /// `work` may destroy this object.
  Turns(Work work, MayStart mayStart)
      : _work(std::make_shared<const Work>(std::move(work))), _mayStart(std::move(mayStart)) {}
  Turns(const Turns&) = delete;
  Turns& operator=(const Turns&) = delete;

  /// `size` is the message's, in bytes.
  void add(ConnectionNumber connection, Request request, size_t size);
  /// Whether so much waits that the connection should not be read from.
  bool isFull(ConnectionNumber connection) const;
  /// Forgets what has not started.
  void drop(ConnectionNumber connection) { _lanes.erase(connection); }

 private:
  using Clock = std::chrono::steady_clock;
  struct Waiting {
    Request request;
    size_t size;
  };
  struct Lane {
    std::deque<Waiting> requests;
    size_t bytes = 0;
    /// The time that its requests took, on the scale of all connections.
    Clock::duration used{0};
  };
  using Lanes = std::map<ConnectionNumber, Lane>;

  Lanes::iterator next();
  void takeTurn();
  /// Takes the next turn as soon as other sources had theirs, or when it is time to ask again for
  /// what may not start yet.
  void goOn(bool isPausing);
  void pauseOrEnd();

  std::shared_ptr<const Work> _work;
  MayStart _mayStart;
  Lanes _lanes;
  /// Where on that scale the connection stood that was served last.
  Clock::duration _served{0};
  Source _source;
  bool _isPausing = false;
};

}  // namespace tapdeck::standin
