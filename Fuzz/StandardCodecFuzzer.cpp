#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

#include "Engine/StandardCodec.h"

namespace tapdeck::codec {
namespace {

/// What decodes must encode to a message that decodes again, to the very same value. Held by bytes
/// and not by `==`, for which no NaN is the same.
template <typename Decode, typename Encode>
void check(std::span<const uint8_t> input, Decode decode, Encode encode) {
  const auto first = decode(input);
  if (!first) return;
  const Bytes bytes = encode(*first);
  const auto second = decode(std::span<const uint8_t>(bytes));
  if (!second || encode(*second) != bytes) std::abort();
}

/// ValueMap promises that no two of its keys are equal.
void checkKeys(const Value& value) {
  if (const auto* list = value.getIf<Value::List>()) {
    for (const Value& element : *list) checkKeys(element);
  } else if (const auto* map = value.getIf<ValueMap>()) {
    // Small maps only, as this compares each key with each other.
    if (map->size() > 16) return;
    for (auto entry = map->begin(); entry != map->end(); ++entry) {
      for (auto other = map->begin(); other != entry; ++other) {
        if (entry->first == other->first) std::abort();
      }
      checkKeys(entry->second);
    }
  }
}

}  // namespace
}  // namespace tapdeck::codec

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tapdeck::codec;
  const std::span<const uint8_t> input(data, size);
  check(input, decodeMessage, encodeMessage);
  check(input, decodeMethodCall, encodeMethodCall);
  check(
      input, [](std::span<const uint8_t> bytes) { return decodeEnvelope(bytes); },
      [](const tapdeck::Outcome& outcome) { return encodeEnvelope(outcome).value(); });
  if (const auto value = decodeMessage(input)) checkKeys(*value);
  return 0;
}
