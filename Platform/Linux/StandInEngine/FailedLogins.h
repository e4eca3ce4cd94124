#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>

namespace tapdeck::standin {

/// Counts wrong tokens and secrets by the address that they came from, and says how long the answer
/// to the next one is to wait. Right ones are never asked about here. Main thread only.
class FailedLogins {
 public:
  using Clock = std::chrono::steady_clock;

  /// A wrong one came: how long its answer waits, or nothing where too many wait for that address
  /// already. Where it waits, answered() is to follow.
  std::optional<std::chrono::milliseconds> note(const std::string& address, Clock::time_point now);
  void answered(const std::string& address);
  /// Since the start, from everywhere.
  size_t total() const { return _total; }

 private:
  struct Record {
    int recent = 0;
    int waiting = 0;
    Clock::time_point last;
  };
  void forgetOld(Clock::time_point now);

  std::map<std::string, Record> _records;
  size_t _total = 0;
};

}  // namespace tapdeck::standin
