#include "Platform/Linux/StandInEngine/FailedLogins.h"

#include <algorithm>

namespace tapdeck::standin {
namespace {

using std::chrono::milliseconds;

/// Refused at once: somebody may have two old pages open.
constexpr int kFreeAttempts = 3;
constexpr milliseconds kFirstDelay{250};
constexpr milliseconds kMaxDelay{2000};
constexpr int kMaxDoublings = 3;
constexpr int kMaxWaiting = 4;
constexpr std::chrono::minutes kMemory{1};
constexpr size_t kMaxRecords = 1024;

}  // namespace

std::optional<milliseconds> FailedLogins::note(const std::string& address, Clock::time_point now) {
  ++_total;
  forgetOld(now);
  Record& record = _records[address];
  ++record.recent;
  record.last = now;
  if (record.recent <= kFreeAttempts) return milliseconds(0);
  if (record.waiting >= kMaxWaiting) return std::nullopt;
  ++record.waiting;
  const int doublings = std::min(record.recent - kFreeAttempts - 1, kMaxDoublings);
  return std::min(kFirstDelay * (1 << doublings), kMaxDelay);
}

void FailedLogins::answered(const std::string& address) {
  const auto found = _records.find(address);
  if (found != _records.end() && found->second.waiting > 0) --found->second.waiting;
}

void FailedLogins::forgetOld(Clock::time_point now) {
  std::erase_if(_records, [&](const auto& each) {
    return each.second.waiting == 0 && now - each.second.last > kMemory;
  });
  // whoever has a whole network of addresses must not fill the memory
  if (_records.size() >= kMaxRecords) _records.clear();
}

}  // namespace tapdeck::standin
