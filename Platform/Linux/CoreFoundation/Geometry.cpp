#include <CoreGraphics/CoreGraphics.h>

#include <algorithm>
#include <limits>

const CGRect CGRectNull = {
    {std::numeric_limits<CGFloat>::infinity(), std::numeric_limits<CGFloat>::infinity()}, {0, 0}};

namespace {

/// What a rectangle covers along one axis.
struct Extent {
  CGFloat min, size;
  CGFloat mid() const { return min + size / 2; }
  CGFloat max() const { return min + size; }
  bool contains(CGFloat place) const { return place >= min && place < max(); }
};

Extent extentX(const CGRect& rect) {
  return {rect.origin.x, rect.size.width};
}

Extent extentY(const CGRect& rect) {
  return {rect.origin.y, rect.size.height};
}

/// The smallest one that covers both.
Extent covering(const Extent& a, const Extent& b) {
  const CGFloat min = std::min(a.min, b.min);
  return {min, std::max(a.max(), b.max()) - min};
}

}  // namespace

CGFloat CGRectGetMinX(CGRect rect) {
  return extentX(rect).min;
}

CGFloat CGRectGetMinY(CGRect rect) {
  return extentY(rect).min;
}

CGFloat CGRectGetMidX(CGRect rect) {
  return extentX(rect).mid();
}

CGFloat CGRectGetMidY(CGRect rect) {
  return extentY(rect).mid();
}

CGFloat CGRectGetMaxX(CGRect rect) {
  return extentX(rect).max();
}

CGFloat CGRectGetMaxY(CGRect rect) {
  return extentY(rect).max();
}

CGFloat CGRectGetWidth(CGRect rect) {
  return rect.size.width;
}

CGFloat CGRectGetHeight(CGRect rect) {
  return rect.size.height;
}

bool CGRectContainsPoint(CGRect rect, CGPoint point) {
  return extentX(rect).contains(point.x) && extentY(rect).contains(point.y);
}

bool CGRectIsNull(CGRect rect) {
  return rect.origin.x == std::numeric_limits<CGFloat>::infinity() ||
         rect.origin.y == std::numeric_limits<CGFloat>::infinity();
}

CGRect CGRectUnion(CGRect a, CGRect b) {
  if (CGRectIsNull(a)) return b;
  if (CGRectIsNull(b)) return a;
  const Extent x = covering(extentX(a), extentX(b));
  const Extent y = covering(extentY(a), extentY(b));
  return CGRectMake(x.min, y.min, x.size, y.size);
}
