#include "Platform/Linux/Pixels/ScalerKernels.h"

#include <algorithm>
#include <cstring>

// The loops are plain C++ that the compiler turns into vector code; on x86-64 a second time for
// AVX2, which not every processor has.
#if defined(__x86_64__)
#include <emmintrin.h>
#define TAPDECK_HAS_AVX2_BUILD 1
#define TAPDECK_AVX2 __attribute__((target("avx2")))
#endif
#define TAPDECK_INLINE inline __attribute__((always_inline))

namespace tapdeck::pixels::kernels {
namespace {

constexpr int kLanes = 4 * kTapsAtOnce;
using Lanes = uint16_t __attribute__((vector_size(2 * kLanes)));

TAPDECK_INLINE Lanes load(const uint16_t* values) {
  Lanes lanes;
  std::memcpy(&lanes, values, sizeof lanes);
  return lanes;
}

/// The upper halves of the products.
TAPDECK_INLINE Lanes multiplyHigh(Lanes a, Lanes b) {
#ifdef __SSE2__
  // one instruction, which the compiler finds for the loop below only where it stands alone
  return reinterpret_cast<Lanes>(
      _mm_mulhi_epu16(reinterpret_cast<__m128i>(a), reinterpret_cast<__m128i>(b)));
#else
  Lanes high;
  for (int i = 0; i < kLanes; ++i) {
    high[i] = static_cast<uint16_t>((static_cast<uint32_t>(a[i]) * b[i]) >> 16);
  }
  return high;
#endif
}

template <int kRows, bool kAdd>
TAPDECK_INLINE void blend(const WeightedRows& from, uint16_t* __restrict blended, size_t count) {
  const uint8_t* rows[kRows];
  uint16_t weights[kRows];
  for (int r = 0; r < kRows; ++r) {
    rows[r] = from.rows[r];
    weights[r] = from.weights[r];
  }
  for (size_t i = 0; i < count; ++i) {
    uint16_t sum = kAdd ? blended[i] : 0;
    for (int r = 0; r < kRows; ++r) sum = static_cast<uint16_t>(sum + rows[r][i] * weights[r]);
    blended[i] = sum;
  }
}

template <bool kAdd>
TAPDECK_INLINE void blendAny(const WeightedRows& rows, uint16_t* blended, size_t count) {
  switch (rows.count) {
    case 1:
      return blend<1, kAdd>(rows, blended, count);
    case 2:
      return blend<2, kAdd>(rows, blended, count);
    case 3:
      return blend<3, kAdd>(rows, blended, count);
    default:
      return blend<kRowsAtOnce, kAdd>(rows, blended, count);
  }
}

TAPDECK_INLINE void blendEither(const WeightedRows& rows, uint16_t* blended, size_t count) {
  rows.add ? blendAny<true>(rows, blended, count) : blendAny<false>(rows, blended, count);
}

/// The sum for two neighbouring taps of one target pixel in each half.
template <int kTaps>
TAPDECK_INLINE Lanes sumOfTaps(const uint16_t* values, const uint16_t* weights, int taps) {
  Lanes sum{};
  for (int t = 0; t < (kTaps > 0 ? kTaps : taps); t += kTapsAtOnce) {
    sum += multiplyHigh(load(values + size_t{4} * t), load(weights + size_t{4} * t));
  }
  return sum;
}

template <int kTaps>
TAPDECK_INLINE void join(const WeightedColumns& columns, const uint16_t* blended, uint8_t* target,
                         int targetWidth) {
  const int taps = kTaps > 0 ? kTaps : columns.taps;
  // half a step to round to nearest and half for each tap's lost fraction, as far as it fits; 255
  // for the byte that has no weights
  const auto half = static_cast<uint16_t>(std::min(128 + taps / 2, 255));
  const Lanes start = {half, half, half, 0xff00, half, half, half, 0xff00};
  const auto sumAt = [&](int x) __attribute__((always_inline)) {
    return sumOfTaps<kTaps>(blended + size_t{4} * columns.first[x],
                            columns.weights + static_cast<size_t>(x) * taps * 4, taps);
  };
  int x = 0;
  for (; x + 1 < targetWidth; x += 2) {
    const Lanes a = sumAt(x);
    const Lanes b = sumAt(x + 1);
    const Lanes whole = (start + __builtin_shufflevector(a, b, 0, 1, 2, 3, 8, 9, 10, 11) +
                         __builtin_shufflevector(a, b, 4, 5, 6, 7, 12, 13, 14, 15)) >>
                        8;
    using Bytes = uint8_t __attribute__((vector_size(kLanes)));
    const Bytes bytes = __builtin_convertvector(whole, Bytes);
    std::memcpy(target + size_t{4} * x, &bytes, sizeof bytes);
  }
  for (; x < targetWidth; ++x) {
    const Lanes a = sumAt(x);
    for (int i = 0; i < 4; ++i) {
      target[size_t{4} * x + i] = static_cast<uint8_t>((start[i] + a[i] + a[i + 4]) >> 8);
    }
  }
}

TAPDECK_INLINE void joinAny(const WeightedColumns& columns, const uint16_t* blended,
                            uint8_t* target, int targetWidth) {
  switch (columns.taps) {
    case 2:
      return join<2>(columns, blended, target, targetWidth);
    case 4:
      return join<4>(columns, blended, target, targetWidth);
    case 6:
      return join<6>(columns, blended, target, targetWidth);
    default:
      return join<0>(columns, blended, target, targetWidth);
  }
}

#ifdef TAPDECK_HAS_AVX2_BUILD
TAPDECK_AVX2 void blendRowsAvx2(const WeightedRows& rows, uint16_t* blended, size_t count) {
  blendEither(rows, blended, count);
}

TAPDECK_AVX2 void joinColumnsAvx2(const WeightedColumns& columns, const uint16_t* blended,
                                  uint8_t* target, int targetWidth) {
  joinAny(columns, blended, target, targetWidth);
}

const bool hasAvx2 = __builtin_cpu_supports("avx2") != 0;
#endif

}  // namespace

void blendRows(const WeightedRows& rows, uint16_t* blended, size_t count) {
#ifdef TAPDECK_HAS_AVX2_BUILD
  if (hasAvx2) return blendRowsAvx2(rows, blended, count);
#endif
  blendEither(rows, blended, count);
}

void joinColumns(const WeightedColumns& columns, const uint16_t* blended, uint8_t* target,
                 int targetWidth) {
#ifdef TAPDECK_HAS_AVX2_BUILD
  if (hasAvx2) return joinColumnsAvx2(columns, blended, target, targetWidth);
#endif
  joinAny(columns, blended, target, targetWidth);
}

}  // namespace tapdeck::pixels::kernels
