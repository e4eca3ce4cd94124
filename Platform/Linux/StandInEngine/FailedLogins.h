#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>

namespace tapdeck::standin {

/// Counts wrong tokens and secrets by the address that they came from, and says how long each
/// refusal is to be delayed, so that guessing is slow. Right ones are not delayed. Main thread
/// only.
class FailedLogins {
 public:
  using Clock = std::chrono::steady_clock;

  /// A login has failed: how long its refusal is delayed, or nothing when too many refusals to that
  /// address wait already. A delayed one is followed by answered().
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
