#include "Engine/Utf8.h"

#include <cstddef>
#include <cstdint>

namespace tapdeck {
namespace {

/// What may follow a lead byte: how many bytes, and the narrowed range of the first of them, which
/// is what shuts out overlong forms, surrogates and what lies above U+10FFFF.
struct Sequence {
  size_t following;
  uint8_t low = 0x80;
  uint8_t high = 0xBF;
};

constexpr size_t kNoLead = 4;

Sequence sequenceOf(uint8_t lead) {
  if (lead < 0x80) return {0};
  if (lead < 0xC2) return {kNoLead};
  if (lead < 0xE0) return {1};
  if (lead == 0xE0) return {2, 0xA0};
  if (lead == 0xED) return {2, 0x80, 0x9F};
  if (lead < 0xF0) return {2};
  if (lead == 0xF0) return {3, 0x90};
  if (lead < 0xF4) return {3};
  if (lead == 0xF4) return {3, 0x80, 0x8F};
  return {kNoLead};
}

}  // namespace

bool isUtf8(std::string_view text) {
  for (size_t at = 0; at < text.size();) {
    const Sequence sequence = sequenceOf(static_cast<uint8_t>(text[at++]));
    if (sequence.following == kNoLead || sequence.following > text.size() - at) return false;
    for (size_t n = 0; n < sequence.following; ++n) {
      const auto byte = static_cast<uint8_t>(text[at++]);
      if (byte < (n == 0 ? sequence.low : 0x80) || byte > (n == 0 ? sequence.high : 0xBF)) {
        return false;
      }
    }
  }
  return true;
}

}  // namespace tapdeck
