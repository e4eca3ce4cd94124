#pragma once

#include <cstdint>

namespace tapdeck::codec {

/// Lists and maps may be nested this deep in a message that is read.
inline constexpr int kDepthLimit = 64;

/// The byte that stands before each value and names its type.
enum class Tag : uint8_t {
  null = 0,
  yes = 1,
  no = 2,
  int32 = 3,
  int64 = 4,
  /// An integer of any size as hexadecimal text.
  largeInt = 5,
  float64 = 6,
  string = 7,
  bytes = 8,
  int32List = 9,
  int64List = 10,
  float64List = 11,
  list = 12,
  map = 13,
  float32List = 14,
};

/// A size below the first mark stands in one byte; the marks announce two and four bytes of size.
inline constexpr uint8_t kSizeIn16Bits = 254;
inline constexpr uint8_t kSizeIn32Bits = 255;

/// The first byte of an envelope.
inline constexpr uint8_t kSuccess = 0;
inline constexpr uint8_t kError = 1;

}  // namespace tapdeck::codec
