#pragma once

#include <span>
#include <vector>

#include "Platform/Linux/Pixels/Pixels.h"
#include "Platform/Linux/X11/Capture/RootFormat.h"
#include "Platform/Linux/X11/Capture/SegmentPool.h"
#include "Platform/Linux/X11/Connection.h"

namespace tapdeck::x11 {

/// Reads the root window, the cursor left out: through shared memory where the server offers it,
/// else through the connection. Areas are in pixels of the root window.
class ScreenGrab {
 public:
  explicit ScreenGrab(Connection& connection)
      : _connection(connection), _format(RootFormat::of(connection)), _segments(connection) {}

  /// Null when the server refuses (part of the area is off the screen), is gone, or keeps its
  /// pixels in some other way than RootFormat knows.
  pixels::PixelBuffer grab(const pixels::Area& area);
  /// Brings parts of an earlier grab of `area` up to date. False when that fails for a reason
  /// above, and then some of the parts may be up to date and others not.
  bool refresh(const pixels::PixelBuffer& picture, const pixels::Area& area,
               std::span<const pixels::Area> parts);

 private:
  pixels::PixelBuffer grabInto(const Segment& segment, const pixels::Area& area);
  bool refreshShared(const Segment& segment, const pixels::PixelBuffer& picture,
                     const pixels::Area& area, std::span<const pixels::Area> parts);
  bool refreshPlain(const pixels::PixelBuffer& picture, const pixels::Area& area,
                    std::span<const pixels::Area> parts);
  void put(const uint8_t* from, const pixels::PixelBuffer& picture,
           const pixels::Area& place) const;

  Connection& _connection;
  std::optional<RootFormat> _format;
  SegmentPool _segments;
};

}  // namespace tapdeck::x11
