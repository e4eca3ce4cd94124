#include <CoreGraphics/CoreGraphics.h>

#include <algorithm>
#include <limits>

const CGRect CGRectNull = {
    {std::numeric_limits<CGFloat>::infinity(), std::numeric_limits<CGFloat>::infinity()}, {0, 0}};

CGFloat CGRectGetMinX(CGRect rect) {
  return rect.origin.x;
}

CGFloat CGRectGetMidX(CGRect rect) {
  return rect.origin.x + rect.size.width / 2;
}

CGFloat CGRectGetMaxX(CGRect rect) {
  return rect.origin.x + rect.size.width;
}

CGFloat CGRectGetMinY(CGRect rect) {
  return rect.origin.y;
}

CGFloat CGRectGetMidY(CGRect rect) {
  return rect.origin.y + rect.size.height / 2;
}

CGFloat CGRectGetMaxY(CGRect rect) {
  return rect.origin.y + rect.size.height;
}

CGFloat CGRectGetWidth(CGRect rect) {
  return rect.size.width;
}

CGFloat CGRectGetHeight(CGRect rect) {
  return rect.size.height;
}

bool CGRectContainsPoint(CGRect rect, CGPoint point) {
  return point.x >= CGRectGetMinX(rect) && point.x < CGRectGetMaxX(rect) &&
         point.y >= CGRectGetMinY(rect) && point.y < CGRectGetMaxY(rect);
}

bool CGRectIsNull(CGRect rect) {
  return rect.origin.x == std::numeric_limits<CGFloat>::infinity() ||
         rect.origin.y == std::numeric_limits<CGFloat>::infinity();
}

CGRect CGRectUnion(CGRect a, CGRect b) {
  if (CGRectIsNull(a)) return b;
  if (CGRectIsNull(b)) return a;
  const CGFloat minX = std::min(CGRectGetMinX(a), CGRectGetMinX(b));
  const CGFloat minY = std::min(CGRectGetMinY(a), CGRectGetMinY(b));
  const CGFloat maxX = std::max(CGRectGetMaxX(a), CGRectGetMaxX(b));
  const CGFloat maxY = std::max(CGRectGetMaxY(a), CGRectGetMaxY(b));
  return CGRectMake(minX, minY, maxX - minX, maxY - minY);
}
