#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "Platform/Linux/Pixels/Pixels.h"

namespace tapdeck::pixels {

/// Writes JPEG files, colour at half resolution (4:2:0). Keeps its memory from one file to the
/// next.
class JpegEncoder {
 public:
  JpegEncoder();

  /// A whole JPEG file, valid until the next call; `quality` is 1 to 100. Empty when that fails.
  std::span<const uint8_t> encode(const PixelView& picture, int quality);

 private:
  struct Destroy {
    void operator()(void* compressor) const;
  };
  struct Free {
    void operator()(uint8_t* bytes) const;
  };
  std::unique_ptr<void, Destroy> _compressor;
  std::unique_ptr<uint8_t, Free> _file;
  size_t _capacity = 0;
};

}  // namespace tapdeck::pixels
