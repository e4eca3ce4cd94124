#pragma once

#include <random>
#include <vector>

#include "Platform/Linux/X11/Capture/SegmentPool.h"
#include "Platform/Linux/X11/Connection.h"

namespace tapdeck::testing {

/// Another application, which changes something somewhere on the screen by every way there is.
class ScreenPainter {
 public:
  explicit ScreenPainter(unsigned seed);

  /// Paints, moves or shows one thing; not waited for.
  void change();
  /// Fills a part of the screen with 0xRRGGBB (of a screen of depth 24) and waits.
  void fill(const xcb_rectangle_t& area, uint32_t colour);
  void finish() const { _server.sync(); }
  /// A part of the screen as it is now, by the plainest request that there is, as 0xffRRGGBB.
  std::vector<uint32_t> pixels(int x, int y, int width, int height) const;

 private:
  int between(int least, int most);
  xcb_rectangle_t somewhere();
  void paintByRender(xcb_drawable_t on, const xcb_rectangle_t& area);
  void putShared(xcb_drawable_t on, const xcb_rectangle_t& area);

  x11::Connection _server;
  x11::SegmentPool _segments{_server};
  xcb_screen_t* _screen;
  std::mt19937 _random;
  xcb_gcontext_t _context;
  uint32_t _renderFormat = 0;
  std::vector<xcb_window_t> _windows;
};

}  // namespace tapdeck::testing
