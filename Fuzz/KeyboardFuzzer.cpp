// The keyboard's map as a server sends it, and the journal of what a process held.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Fuzz/Require.h"
#include "Platform/Linux/X11/Keyboard/Journal.h"
#include "Platform/Linux/X11/Keyboard/KeyPlan.h"
#include "Platform/Linux/X11/Keyboard/Keymap.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tapdeck::x11;
  const std::vector<uint8_t> bytes(data, data + size);
  if (const auto map = readKeymap(bytes.data(), bytes.size())) {
    spareKeysOf(*map);
    for (int group = -1; group < 5; ++group) map->keyFor('a', group);
  }
  if (const auto held = readRecord(bytes)) {
    const auto again = readRecord(writeRecord(*held));
    tapdeck::require(again && again->keys == held->keys && again->locks == held->locks &&
                         again->mappings == held->mappings,
                     "what was read is written as it was");
  }
  return 0;
}
