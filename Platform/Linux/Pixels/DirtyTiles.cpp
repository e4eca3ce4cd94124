#include "Platform/Linux/Pixels/DirtyTiles.h"

#include <algorithm>

namespace tapdeck::pixels {
namespace {

// About a word of a line of text.
constexpr int kTileWidth = 64;
constexpr int kTileHeight = 16;
// A request costs more than to grab that many tiles in vain.
constexpr int kBridgedTiles = 1;

int tilesFor(int pixels, int tile) {
  return (pixels + tile - 1) / tile;
}

}  // namespace

DirtyTiles::DirtyTiles(int width, int height)
    : _width(width),
      _height(height),
      _columns(tilesFor(width, kTileWidth)),
      _rows(tilesFor(height, kTileHeight)),
      _isDirty(static_cast<size_t>(_columns) * static_cast<size_t>(_rows)) {}

void DirtyTiles::add(const Area& area) {
  const Area inside = intersection(area, {0, 0, _width, _height});
  if (inside.width <= 0 || inside.height <= 0) return;
  const int endColumn = tilesFor(inside.x + inside.width, kTileWidth);
  const int endRow = tilesFor(inside.y + inside.height, kTileHeight);
  for (int row = inside.y / kTileHeight; row < endRow; ++row) {
    for (int column = inside.x / kTileWidth; column < endColumn; ++column) {
      uint8_t& tile = _isDirty[static_cast<size_t>(row) * _columns + column];
      _dirtyCount += tile == 0 ? 1 : 0;
      tile = 1;
    }
  }
}

void DirtyTiles::add(std::span<const Area> areas) {
  for (const Area& area : areas) add(area);
}

void DirtyTiles::addAll() {
  std::fill(_isDirty.begin(), _isDirty.end(), uint8_t{1});
  _dirtyCount = _columns * _rows;
}

void DirtyTiles::clear() {
  if (isEmpty()) return;
  std::fill(_isDirty.begin(), _isDirty.end(), uint8_t{0});
  _dirtyCount = 0;
}

double DirtyTiles::share() const {
  return static_cast<double>(_dirtyCount) / (_columns * _rows);
}

std::vector<Area> DirtyTiles::runsOf(int row) const {
  std::vector<Area> runs;  // in tiles
  for (int column = 0; column < _columns; ++column) {
    if (_isDirty[static_cast<size_t>(row) * _columns + column] == 0) continue;
    if (!runs.empty() && column - (runs.back().x + runs.back().width) <= kBridgedTiles) {
      runs.back().width = column + 1 - runs.back().x;
    } else {
      runs.push_back({column, row, 1, 1});
    }
  }
  return runs;
}

std::vector<Area> DirtyTiles::areas() const {
  std::vector<Area> found;
  if (isEmpty()) return found;
  // the rectangles that may go on downwards, which they do when a row has the same runs
  size_t open = 0;
  for (int row = 0; row < _rows; ++row) {
    const auto runs = runsOf(row);
    const bool goesOn =
        runs.size() == found.size() - open &&
        std::equal(runs.begin(), runs.end(), found.begin() + static_cast<std::ptrdiff_t>(open),
                   [](const Area& a, const Area& b) { return a.x == b.x && a.width == b.width; });
    if (goesOn) {
      for (size_t i = open; i < found.size(); ++i) ++found[i].height;
    } else {
      open = found.size();
      found.insert(found.end(), runs.begin(), runs.end());
    }
  }
  for (Area& area : found) {
    area = intersection({area.x * kTileWidth, area.y * kTileHeight, area.width * kTileWidth,
                         area.height * kTileHeight},
                        {0, 0, _width, _height});
  }
  return found;
}

}  // namespace tapdeck::pixels
