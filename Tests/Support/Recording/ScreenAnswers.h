#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tapdeck::recording {

/// What the recording platform shows on displays, and how it draws and encodes it.
struct ScreenImages {
  struct Picture {
    size_t width;
    size_t height;
    /// What a context holds once the picture is drawn, rows without padding; zero where it ends.
    std::vector<uint8_t> drawn;
  };
  /// A display that is not among them has no image.
  std::map<CGDirectDisplayID, Picture> displays;
  /// Bytes at the end of each row of a context, different after each drawing.
  size_t rowPadding = 0;
  /// What every context's pixels are numbered by.
  std::optional<uint64_t> version;
  /// Name of the function that fails.
  std::string failing;
  /// What every image is encoded as.
  std::vector<uint8_t> jpeg = {0xff, 0xd8, 0xff, 0xd9};
};

}  // namespace tapdeck::recording
