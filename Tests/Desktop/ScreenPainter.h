#pragma once

#include <functional>
#include <random>
#include <vector>

#include "Platform/Linux/Quartz/Connection.h"
#include "Platform/Linux/Quartz/Images/SegmentPool.h"

namespace tapdeck::testing {

/// Another application, which changes something somewhere on the screen by every way there is.
class ScreenPainter {
 public:
  explicit ScreenPainter(unsigned seed);

  /// Paints, moves or shows one thing; not waited for.
  void change();
  /// Fills a rectangle of the screen with 0xRRGGBB (of a screen of depth 24).
  void fill(int x, int y, int width, int height, uint32_t colour);
  /// Waits until all changes are made.
  void finish() const { _server.finish(); }
  /// A monitor as the screen's pixels are now, by the plainest request that there is.
  std::vector<uint32_t> pixels(int x, int y, int width, int height) const;

  int width() const { return _screen->width_in_pixels; }
  int height() const { return _screen->height_in_pixels; }

 private:
  xcb_rectangle_t somewhere();
  int between(int least, int most);
  void paintCore(xcb_drawable_t on);
  void paintByRender(xcb_drawable_t on);
  void putShared(xcb_drawable_t on);
  void rearrange(xcb_window_t window);

  quartz::Connection _server;
  quartz::SegmentPool _segments{_server};
  xcb_screen_t* _screen;
  std::mt19937 _random;
  xcb_gcontext_t _context;
  uint32_t _renderFormat = 0;
  std::vector<xcb_window_t> _windows;
};

}  // namespace tapdeck::testing
