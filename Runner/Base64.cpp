#include "Runner/Base64.h"

#include <algorithm>
#include <cstddef>

namespace tapdeck {
namespace {

constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr size_t kGroupBytes = 3;
constexpr size_t kGroupDigits = 4;

}  // namespace

std::string base64(std::span<const uint8_t> bytes) {
  std::string text;
  text.reserve((bytes.size() + kGroupBytes - 1) / kGroupBytes * kGroupDigits);
  for (size_t start = 0; start < bytes.size(); start += kGroupBytes) {
    const size_t count = std::min(kGroupBytes, bytes.size() - start);
    uint32_t group = 0;
    for (size_t i = 0; i < kGroupBytes; ++i) {
      group = group << 8U | (i < count ? bytes[start + i] : 0U);
    }
    for (size_t digit = 0; digit < kGroupDigits; ++digit) {
      text += digit <= count ? kDigits[group >> (18U - 6U * digit) & 0x3FU] : '=';
    }
  }
  return text;
}

}  // namespace tapdeck
