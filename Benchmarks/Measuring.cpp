#include "Benchmarks/Measuring.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace tapdeck::benchmarks {

double processorMilliseconds(pid_t process) {
  clockid_t clock = 0;
  timespec used{};
  if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &used) != 0) {
    throw std::runtime_error("a process's time cannot be read");
  }
  return static_cast<double>(used.tv_sec) * 1e3 + static_cast<double>(used.tv_nsec) / 1e6;
}

std::string shown(double value, int decimals, const char* unit) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f%s%s", decimals, value, *unit != '\0' ? " " : "", unit);
  return text;
}

void addToTable(const TableRow& row) {
  const char* file = std::getenv("TAPDECK_BENCH_TABLE");
  if (file == nullptr) return;
  std::ofstream table(file, std::ios::app);
  table << "| " << row.what;
  const std::string bound = row.bound + (row.bound.empty() || row.isMet ? "" : ": MISSED");
  for (const std::string& cell : {row.measured, row.beside, row.ratio, bound}) {
    table << " | " << (cell.empty() ? "–" : cell);
  }
  table << " |\n";
}

}  // namespace tapdeck::benchmarks
