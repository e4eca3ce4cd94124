#include "Platform/Linux/Pixels/AreaScaler.h"

#include <algorithm>

#include "Platform/Linux/Pixels/ScalerKernels.h"

namespace tapdeck::pixels {
namespace {

// A byte times all weights of its target pixel must just fit into 16 bits.
constexpr uint32_t kWholeRowWeight = 256;
// One short of 2^16, so that a pixel that covers just one other has a weight too.
constexpr uint32_t kWholeColumnWeight = 65535;

}  // namespace

AreaScaler::Axis::Axis(int source, int target, uint32_t wholeWeight, int multiple)
    : sourceLength(source), targetLength(target) {
  // In units that make a source pixel `target` long and a target pixel `source`, all edges are
  // whole numbers.
  const auto firstUnder = [&](int pixel) { return int64_t{pixel} * source / target; };
  const auto endUnder = [&](int pixel) {
    return (int64_t{pixel + 1} * source + target - 1) / target;
  };
  for (int pixel = 0; pixel < target; ++pixel) {
    taps = std::max(taps, static_cast<int>(endUnder(pixel) - firstUnder(pixel)));
  }
  taps = (taps + multiple - 1) / multiple * multiple;

  weights.resize(static_cast<size_t>(target) * static_cast<size_t>(taps));
  for (int pixel = 0; pixel < target; ++pixel) {
    const int64_t start = int64_t{pixel} * source;
    first.push_back(static_cast<int>(firstUnder(pixel)));
    // rounds the sum so far instead of each weight, so that the weights add up to the whole
    uint32_t given = 0;
    for (int64_t under = first.back(); under < endUnder(pixel); ++under) {
      const int64_t covered = std::min((under + 1) * target, start + source) - start;
      const auto sum =
          static_cast<uint32_t>((2 * covered * wholeWeight + source) / (int64_t{2} * source));
      weights[static_cast<size_t>(pixel) * taps + (under - first.back())] =
          static_cast<uint16_t>(sum - given);
      given = sum;
    }
  }
}

AreaScaler::AreaScaler(Size source, Size target)
    : _columns(source.width, target.width, kWholeColumnWeight, kernels::kTapsAtOnce),
      _rows(source.height, target.height, kWholeRowWeight, 1),
      _blended((static_cast<size_t>(source.width) + _columns.taps) * 4) {
  _byteWeights.reserve(_columns.weights.size() * 4);
  for (const uint16_t weight : _columns.weights) {
    _byteWeights.insert(_byteWeights.end(), {weight, weight, weight, 0});
  }
}

int AreaScaler::firstReached(const Axis& axis, int source) const {
  return static_cast<int>(int64_t{source} * axis.targetLength / axis.sourceLength);
}

int AreaScaler::endReached(const Axis& axis, int sourceEnd) const {
  return static_cast<int>((int64_t{sourceEnd} * axis.targetLength + axis.sourceLength - 1) /
                          axis.sourceLength);
}

Area AreaScaler::reach(const Area& source) const {
  const int left = firstReached(_columns, source.x);
  const int top = firstReached(_rows, source.y);
  return {left, top, endReached(_columns, source.x + source.width) - left,
          endReached(_rows, source.y + source.height) - top};
}

void AreaScaler::blendRows(const PixelView& source, int targetRow, int fromColumn, int toColumn) {
  const uint16_t* weights = _rows.weightsOf(targetRow);
  const size_t from = static_cast<size_t>(fromColumn) * 4;
  const size_t count = static_cast<size_t>(toColumn) * 4 - from;
  // the last taps of the last rows may lie below the picture; their weights are 0
  const int taps = std::min(_rows.taps, source.height - _rows.first[targetRow]);
  const uint8_t* rows[kernels::kRowsAtOnce];
  for (int done = 0; done < taps; done += kernels::kRowsAtOnce) {
    const int rowCount = std::min(taps - done, kernels::kRowsAtOnce);
    for (int i = 0; i < rowCount; ++i) {
      rows[i] = source.at(fromColumn, _rows.first[targetRow] + done + i);
    }
    kernels::blendRows({rows, weights + done, rowCount, done > 0}, _blended.data() + from, count);
  }
}

void AreaScaler::scale(const PixelView& source, const PixelBuffer& target, const Area& part) {
  if (part.width <= 0 || part.height <= 0) return;
  const int lastColumn = part.x + part.width - 1;
  const int fromColumn = _columns.first[part.x];
  const int toColumn = std::min(_columns.first[lastColumn] + _columns.taps, source.width);
  for (int y = part.y; y < part.y + part.height; ++y) {
    blendRows(source, y, fromColumn, toColumn);
    kernels::joinColumns(
        {_columns.first.data() + part.x,
         _byteWeights.data() + static_cast<size_t>(part.x) * _columns.taps * 4, _columns.taps},
        _blended.data(), target.at(part.x, y), part.width);
  }
}

}  // namespace tapdeck::pixels
