#pragma once

#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <optional>

#include "Platform/Linux/X11/Connection.h"

namespace tapdeck::x11 {

/// How the X screen keeps its pixels: four bytes each, blue, green and red of 8 bits or more
/// (depth 24 and depth 30).
class RootFormat {
 public:
  /// Absent for a screen of any other kind.
  static std::optional<RootFormat> of(const Connection& connection);

  /// Whether the pixels need no conversion: in memory order blue, green, red, unused.
  bool isPlain() const { return _isPlain; }
  /// Converts pixels to that order, keeping the upper 8 bits of each colour.
  void convert(const uint8_t* from, uint8_t* to, int count) const;

 private:
  explicit RootFormat(const xcb_visualtype_t& visual);

  bool _isPlain;
  int _redShift, _greenShift, _blueShift;
};

}  // namespace tapdeck::x11
