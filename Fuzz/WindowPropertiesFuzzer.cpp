// Struts and work areas: numbers that any client may set for its windows.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Fuzz/Require.h"
#include "Platform/Linux/X11/WindowManager.h"
#include "Platform/Linux/X11/WorkArea.h"

namespace tapdeck::x11 {
namespace {

constexpr int kWidth = 3840, kHeight = 1200;

bool isWithin(const Edges& inner, const Edges& outer) {
  return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
         inner.bottom <= outer.bottom;
}

void check(const Monitor& monitor, const std::vector<int>& lengths) {
  const Edges whole{monitor.x, monitor.y, monitor.x + monitor.width, monitor.y + monitor.height};
  std::vector<Strut> struts;
  if (const auto strut = strutOf(lengths)) struts.push_back(*strut);
  const Edges left = withoutStruts(monitor, struts, {kWidth, kHeight});
  require(isWithin(left, whole), "struts leave a part of the monitor");
  require(isWithin(withinWorkArea(left, lengths), left), "the work area leaves a part of that");
}

}  // namespace
}  // namespace tapdeck::x11

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tapdeck::x11;
  const auto lengths = lengthsIn(std::vector<uint8_t>(data, data + size));
  check({1, "left", 0, 0, 1920, 1080}, lengths);
  check({2, "right", 1920, 120, 1920, 1080}, lengths);
  return 0;
}
