#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>

#include "Platform/Linux/EngineProtocol/Protocol.h"
#include "Platform/Linux/StandInEngine/EngineTypes.h"
#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::standin {

/// Shares the main thread fairly between connections: each has a queue of requests, and the one
/// whose requests have used the least time is served next. Runs from the default main context, for
/// a time slice of a few milliseconds each time; the order within a connection is kept. Main thread
/// only.
class RequestScheduler {
 public:
  /// Carries out one request. The connection may have ended in the meantime.
  using Work = std::function<void(ConnectionNumber, const Request&)>;
  /// Whether a request may be carried out yet. Its connection waits until then, the others go on.
  using MayStart = std::function<bool(const Request&)>;

  /// `work` may destroy this object.
  RequestScheduler(Work work, MayStart mayStart)
      : _work(std::make_shared<const Work>(std::move(work))), _mayStart(std::move(mayStart)) {}
  RequestScheduler(const RequestScheduler&) = delete;
  RequestScheduler& operator=(const RequestScheduler&) = delete;

  /// `size` is the message's, in bytes.
  void add(ConnectionNumber connection, Request request, size_t size);
  /// Whether so much waits that the connection should not be read from.
  bool isFull(ConnectionNumber connection) const;
  /// Forgets what has not started.
  void drop(ConnectionNumber connection) { _queues.erase(connection); }

 private:
  using Clock = std::chrono::steady_clock;
  struct Waiting {
    Request request;
    size_t size;
  };
  struct Queue {
    std::deque<Waiting> requests;
    size_t bytes = 0;
    /// The time that its requests took (its virtual time). A queue that comes back from idleness
    /// starts near those of the others.
    Clock::duration used{0};
  };
  using Queues = std::map<ConnectionNumber, Queue>;

  Queues::iterator next();
  void runSlice();
  /// Takes the next turn as soon as other sources had theirs, or when it is time to ask again for
  /// what may not start yet.
  void goOn(bool isPausing);
  void pauseOrEnd();

  std::shared_ptr<const Work> _work;
  MayStart _mayStart;
  Queues _queues;
  /// The largest `used` of a queue at the time that it was served.
  Clock::duration _served{0};
  glib::Source _source;
  bool _isPausing = false;
};

}  // namespace tapdeck::standin
