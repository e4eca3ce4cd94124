#pragma once

#include <cstddef>
#include <cstdint>

/// The two inner loops of AreaScaler, each for the vector unit that the processor turns out to
/// have.
namespace tapdeck::pixels::kernels {

inline constexpr int kRowsAtOnce = 4;
inline constexpr int kTapsAtOnce = 2;

/// Up to kRowsAtOnce rows of bytes with a weight each, which add up to no more than 256.
struct WeightedRows {
  const uint8_t* const* rows;
  const uint16_t* weights;
  int count;
  /// Whether they come on top of what the result holds already.
  bool add;
};
void blendRows(const WeightedRows& rows, uint16_t* blended, size_t count);

/// For each target pixel its first source pixel and `taps` weights (a multiple of kTapsAtOnce) for
/// each of the four bytes, the unused byte's zero.
struct WeightedColumns {
  const int* first;
  const uint16_t* weights;
  int taps;
};
/// Reads `taps` pixels on from each first one.
void joinColumns(const WeightedColumns& columns, const uint16_t* blended, uint8_t* target,
                 int targetWidth);

}  // namespace tapdeck::pixels::kernels
