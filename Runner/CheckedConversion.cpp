#include "Runner/CheckedConversion.h"

#include <cstdio>
#include <string>

#include "Platform/ProcessInfo.h"

namespace tapdeck {
namespace {

// 2^63, the first double above every signed 64-bit integer
constexpr double kInt64Limit = 9223372036854775808.0;

std::string decimal(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.17g", value);
  return text;
}

}  // namespace

bool fitsInt64(double value) {
  return value >= -kInt64Limit && value < kInt64Limit;
}

int64_t truncatedToInt64(double value, std::string_view what) {
  if (!fitsInt64(value)) {
    platform::stopProcess(std::string(what) + " " + decimal(value) +
                          " does not fit a signed 64-bit integer");
  }
  return static_cast<int64_t>(value);
}

}  // namespace tapdeck
