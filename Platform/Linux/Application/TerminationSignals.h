#pragma once

#include <functional>
#include <thread>

#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck {

/// Handles SIGTERM, SIGINT and, unless it is ignored, SIGHUP for as long as this lives, on a thread
/// of its own: the main thread may be busy typing a long text.
class TerminationSignals {
 public:
  /// `received` is called on that thread, for each signal.
  explicit TerminationSignals(std::function<void()> received);
  TerminationSignals(const TerminationSignals&) = delete;
  TerminationSignals& operator=(const TerminationSignals&) = delete;
  ~TerminationSignals();

 private:
  void listenTo(int signal);

  std::function<void()> _received;
  glib::MainContext _context;
  glib::MainLoop _loop;
  std::thread _thread;
};

}  // namespace tapdeck
