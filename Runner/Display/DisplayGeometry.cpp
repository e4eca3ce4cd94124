#include "Runner/Display/DisplayGeometry.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "Runner/CheckedConversion.h"

namespace tapdeck {
namespace {

constexpr double kPivotWithoutScreens = 1080.0;

using Screens = std::vector<platform::Screen>;

double pivotOf(const Screens& screens) {
  return screens.empty() ? kPivotWithoutScreens : screens.front().frame.size.height;
}

CGRect topLeftFrame(const platform::Screen& screen, double pivot) {
  const CGRect& frame = screen.frame;
  return CGRectMake(frame.origin.x, pivot - frame.origin.y - frame.size.height, frame.size.width,
                    frame.size.height);
}

std::vector<CGRect> topLeftFrames(const Screens& screens) {
  std::vector<CGRect> frames;
  frames.reserve(screens.size());
  for (const auto& screen : screens) frames.push_back(topLeftFrame(screen, pivotOf(screens)));
  return frames;
}

std::optional<uint32_t> parseUnsigned32(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  uint32_t number = 0;
  const char* end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stopped != end) return std::nullopt;
  return number;
}

// a fraction that is no number goes to the near edge
double limitedToUnit(double fraction) {
  return fraction > 0 ? std::min(fraction, 1.0) : 0.0;
}

CGPoint nearestPointWithin(const CGRect& frame, CGPoint point) {
  // the right and bottom edges belong to no display
  return CGPointMake(std::min(std::max(point.x, CGRectGetMinX(frame)), CGRectGetMaxX(frame) - 1),
                     std::min(std::max(point.y, CGRectGetMinY(frame)), CGRectGetMaxY(frame) - 1));
}

}  // namespace

double pivotHeight() {
  return pivotOf(platform::screens());
}

CGRect screenTopLeftFrame(const platform::Screen& screen) {
  return topLeftFrame(screen, pivotHeight());
}

ValueMap displayInfo(size_t index, const platform::Screen& screen) {
  const CGRect frame = screenTopLeftFrame(screen);
  const double scale = screen.backingScaleFactor;
  const auto whole = [](double value, const char* what) {
    return Value(truncatedToInt64(value, what));
  };
  return ValueMap{
      {"id",
       Value(screen.number ? std::to_string(*screen.number) : "screen-" + std::to_string(index))},
      {"name", Value(platform::localizedName(screen))},
      {"x", whole(frame.origin.x, "display x")},
      {"y", whole(frame.origin.y, "display y")},
      {"w", whole(frame.size.width, "display width")},
      {"h", whole(frame.size.height, "display height")},
      {"scale", Value(scale)},
      {"pxW", whole(frame.size.width * scale, "display width in pixels")},
      {"pxH", whole(frame.size.height * scale, "display height in pixels")},
      {"primary", Value(index == 0)},
  };
}

Value::List allDisplays() {
  const Screens screens = platform::screens();
  Value::List displays;
  for (size_t index = 0; index < screens.size(); ++index) {
    displays.emplace_back(displayInfo(index, screens[index]));
  }
  return displays;
}

std::optional<platform::Screen> screenForDisplayId(const std::string& id) {
  for (auto& screen : platform::screens()) {
    if (screen.number && std::to_string(*screen.number) == id) return screen;
  }
  return std::nullopt;
}

std::optional<CGDirectDisplayID> resolveDisplayId(const std::optional<std::string>& id) {
  if (!id || id->empty()) return CGMainDisplayID();
  const std::optional<uint32_t> number = parseUnsigned32(*id);
  if (!number) return std::nullopt;
  const Screens screens = platform::screens();
  const bool attached = std::any_of(screens.begin(), screens.end(),
                                    [&](const auto& screen) { return screen.number == number; });
  return attached ? number : std::nullopt;
}

std::optional<CGPoint> mapNormalizedPoint(const std::optional<std::string>& displayId, double nx,
                                          double ny) {
  CGRect target = CGRectNull;
  if (const auto screen = displayId ? screenForDisplayId(*displayId) : std::nullopt) {
    target = screenTopLeftFrame(*screen);
  } else {
    for (const CGRect& frame : topLeftFrames(platform::screens())) {
      target = CGRectUnion(target, frame);
    }
  }
  if (CGRectIsNull(target)) return std::nullopt;
  const double x = CGRectGetMinX(target) + limitedToUnit(nx) * CGRectGetWidth(target);
  const double y = CGRectGetMinY(target) + limitedToUnit(ny) * CGRectGetHeight(target);
  return CGPointMake(std::min(x, CGRectGetMaxX(target) - 1),
                     std::min(y, CGRectGetMaxY(target) - 1));
}

CGPoint clampToDisplays(CGPoint point) {
  const std::vector<CGRect> frames = topLeftFrames(platform::screens());
  CGPoint nearest = point;
  double smallest = std::numeric_limits<double>::max();
  for (const CGRect& frame : frames) {
    if (CGRectContainsPoint(frame, point)) return point;
    const CGPoint candidate = nearestPointWithin(frame, point);
    const double distance = std::hypot(point.x - candidate.x, point.y - candidate.y);
    if (distance < smallest) {
      smallest = distance;
      nearest = candidate;
    }
  }
  return nearest;
}

}  // namespace tapdeck
