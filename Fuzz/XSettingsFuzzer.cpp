// The desktop's settings: a property that any client may write.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Fuzz/Require.h"
#include "Platform/Linux/X11/XSettings.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto settings = tapdeck::x11::parseSettings(std::vector<uint8_t>(data, data + size));
  for (const auto& [name, value] : settings) {
    tapdeck::require(name.size() <= size, "a name is part of the property");
  }
  return 0;
}
