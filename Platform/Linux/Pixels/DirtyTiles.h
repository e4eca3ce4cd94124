#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "Platform/Linux/Pixels/Pixels.h"

namespace tapdeck::pixels {

/// Which parts of a picture are out of date, kept by tiles, so that its size and the number of
/// areas are bounded, however much is added.
class DirtyTiles {
 public:
  DirtyTiles(int width, int height);

  void add(const Area& area);
  void add(std::span<const Area> areas);
  void addAll();
  void clear();

  bool isEmpty() const { return _dirtyCount == 0; }
  /// The share of dirty tiles, 0 to 1.
  double share() const;
  /// The dirty tiles as few rectangles that do not overlap; they may hold a clean tile between two
  /// dirty ones.
  std::vector<Area> areas() const;

 private:
  std::vector<Area> runsOf(int row) const;

  int _width, _height;
  int _columns, _rows;
  std::vector<uint8_t> _isDirty;
  int _dirtyCount = 0;
};

}  // namespace tapdeck::pixels
