#pragma once

#include <optional>
#include <span>
#include <vector>

#include "Platform/Linux/Pixels/AreaScaler.h"
#include "Platform/Linux/Pixels/DirtyTiles.h"
#include "Platform/Linux/Pixels/Pixels.h"

namespace tapdeck::quartz {

/// The last results of drawing one picture at other sizes, so that what did not change is neither
/// scaled nor copied again.
class ScaledCopies {
 public:
  struct Shape {
    int width, height;
    size_t bytesPerRow;
    friend bool operator==(const Shape&, const Shape&) = default;
  };

  /// `picture` in another shape, the unused byte 255; who is given it only reads it, and
  /// can tell by its version whether it has changed since. Null when there is no memory.
  PixelBuffer in(const Shape& shape, const PixelView& picture);

  /// Parts of the picture are about to be different.
  void markDirty(std::span<const Area> parts);
  void markAllDirty();

 private:
  struct Copy {
    Copy(const Shape& shape, const PixelView& picture);
    PixelBuffer upToDate(const PixelView& picture);
    bool makeOwn();
    void draw(const PixelView& picture, const Area& part);

    Shape shape;
    PixelBuffer pixels;
    /// What of the picture came after `pixels`.
    DirtyTiles dirty;
    /// Absent where the size stays the same.
    std::optional<AreaScaler> scaler;
  };

  std::vector<Copy> _copies;
};

}  // namespace tapdeck::quartz
