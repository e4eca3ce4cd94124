#pragma once

#include <optional>
#include <span>
#include <vector>

#include "Platform/Linux/Pixels/AreaScaler.h"
#include "Platform/Linux/Pixels/DirtyTiles.h"
#include "Platform/Linux/Pixels/Pixels.h"

namespace tapdeck::pixels {

/// A cache of one picture drawn at other sizes: only the parts that have changed are drawn again.
class ScaledCopies {
 public:
  struct Shape {
    int width, height;
    size_t bytesPerRow;
    friend bool operator==(const Shape&, const Shape&) = default;
  };

  /// `picture` in another shape, the unused byte 255. For reading only; it stays as it is for as
  /// long as the caller keeps it, and its version tells whether it has changed since. Converts to
  /// false when no memory is left.
  PixelBuffer in(const Shape& shape, const PixelView& picture);

  /// To call when parts of the picture have changed, before the next `in`.
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
    /// The parts of the picture that have changed since they were drawn.
    DirtyTiles dirty;
    /// Absent where the size stays the same.
    std::optional<AreaScaler> scaler;
  };

  std::vector<Copy> _copies;
};

}  // namespace tapdeck::pixels
