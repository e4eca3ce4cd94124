#pragma once

#include <sys/types.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <string>
#include <vector>

namespace tapdeck::benchmarks {

/// Times of one thing done again and again, in milliseconds.
class Samples {
 public:
  void add(double milliseconds) { _all.push_back(milliseconds); }
  double least() const { return *std::min_element(_all.begin(), _all.end()); }
  double median() const { return percentile(0.5); }
  /// The least value that this share of the samples does not exceed.
  double percentile(double share) const {
    std::vector<double> sorted = _all;
    const auto index = static_cast<ptrdiff_t>(share * static_cast<double>(sorted.size()));
    const auto place = sorted.begin() + std::min<ptrdiff_t>(index, std::ssize(sorted) - 1);
    std::nth_element(sorted.begin(), place, sorted.end());
    return *place;
  }

 private:
  std::vector<double> _all;
};

template <typename Work>
double millisecondsOf(const Work& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
      .count();
}

/// The processor time, in milliseconds, that a process has used up to now, its own code and the
/// kernel's for it; 0 for the calling process. Throws where the process is not there.
double processorMilliseconds(pid_t process);

/// A value as people read it, such as "0.07 ms".
std::string shown(double value, int decimals, const char* unit = "");

/// A line of the table of all benchmarks (`./tapdeck bench`); what there is none of stays empty.
struct TableRow {
  std::string what;
  std::string measured;
  /// What it is measured against: the least that is possible, or what another program needs.
  std::string beside;
  std::string ratio;
  std::string bound;
  /// Whether the bound is kept.
  bool isMet = true;
};

/// Adds the line to the file that $TAPDECK_BENCH_TABLE names; nothing without one.
void addToTable(const TableRow& row);

}  // namespace tapdeck::benchmarks
