#pragma once

#include <xcb/render.h>
#include <xcb/shm.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <random>
#include <vector>

#include "Platform/Linux/X11/Capture/SegmentPool.h"
#include "Platform/Linux/X11/Connection.h"

namespace tapdeck::testing {

inline constexpr uint32_t kAlsoOnWindows = XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS;

/// Another application, which changes something somewhere on the screen by every way there is.
class ScreenPainter {
 public:
  explicit ScreenPainter(unsigned seed) : _random(seed) {
    _screen = xcb_setup_roots_iterator(xcb_get_setup(_server.get())).data;
    _context = xcb_generate_id(_server.get());
    xcb_create_gc(_server.get(), _context, _screen->root, XCB_GC_SUBWINDOW_MODE, &kAlsoOnWindows);
    const auto formats = _server.wait(xcb_render_query_pict_formats(_server.get()),
                                      xcb_render_query_pict_formats_reply);
    for (auto format = xcb_render_query_pict_formats_formats_iterator(formats.get());
         format.rem > 0; xcb_render_pictforminfo_next(&format)) {
      if (format.data->depth == _screen->root_depth) _renderFormat = format.data->id;
    }
    for (int i = 0; i < 3; ++i) {
      const xcb_window_t window = xcb_generate_id(_server.get());
      const uint32_t values[] = {static_cast<uint32_t>(_random()) & 0xffffff, 1};
      const xcb_rectangle_t place = somewhere();
      xcb_create_window(_server.get(), XCB_COPY_FROM_PARENT, window, _screen->root, place.x,
                        place.y, place.width, place.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                        XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
      xcb_map_window(_server.get(), window);
      _windows.push_back(window);
    }
  }

  /// Paints, moves or shows one thing; not waited for.
  void change() {
    const xcb_rectangle_t area = somewhere();
    const xcb_window_t window = _windows[_random() % _windows.size()];
    const xcb_drawable_t on = between(0, 1) == 0 ? _screen->root : window;
    const auto colour = static_cast<uint32_t>(_random());
    const xcb_point_t diagonal[] = {
        {area.x, area.y},
        {static_cast<int16_t>(area.x + area.width), static_cast<int16_t>(area.y + area.height)}};
    const uint32_t geometry[] = {static_cast<uint32_t>(area.x), static_cast<uint32_t>(area.y),
                                 area.width, area.height};
    xcb_connection_t* server = _server.get();
    xcb_change_gc(server, _context, XCB_GC_FOREGROUND, &colour);
    const std::function<void()> ways[] = {
        [&] { xcb_poly_fill_rectangle(server, on, _context, 1, &area); },
        [&] { xcb_poly_line(server, XCB_COORD_MODE_ORIGIN, on, _context, 2, diagonal); },
        [&] { xcb_poly_point(server, XCB_COORD_MODE_ORIGIN, on, _context, 2, diagonal); },
        [&] {
          xcb_copy_area(server, on, on, _context, area.x, area.y, diagonal[1].x, diagonal[1].y,
                        area.width, area.height);
        },
        [&] { xcb_clear_area(server, 0, on, area.x, area.y, area.width, area.height); },
        [&] { xcb_unmap_window(server, window); },
        [&] { xcb_map_window(server, window); },
        // the values' order: x, y, width, height
        [&] { xcb_configure_window(server, window, 0xf, geometry); },
        [&] { paintByRender(on, area); },
        [&] { putShared(on, area); },
    };
    ways[between(0, std::size(ways) - 1)]();
    _server.flush();
  }
  /// Fills a part of the screen with 0xRRGGBB (of a screen of depth 24) and waits.
  void fill(const xcb_rectangle_t& area, uint32_t colour) {
    xcb_change_gc(_server.get(), _context, XCB_GC_FOREGROUND, &colour);
    xcb_poly_fill_rectangle(_server.get(), _screen->root, _context, 1, &area);
    finish();
  }
  void finish() const { _server.sync(); }
  /// A part of the screen as it is now, by the plainest request that there is, as 0xffRRGGBB.
  std::vector<uint32_t> pixels(int x, int y, int width, int height) const {
    const auto request = xcb_get_image(
        _server.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, _screen->root, static_cast<int16_t>(x),
        static_cast<int16_t>(y), static_cast<uint16_t>(width), static_cast<uint16_t>(height), ~0U);
    const auto reply = _server.wait(request, xcb_get_image_reply);
    std::vector<uint32_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
    std::memcpy(pixels.data(), xcb_get_image_data(reply.get()), pixels.size() * 4);
    const bool isDeep = _screen->root_depth == 30;
    for (uint32_t& pixel : pixels) {
      if (isDeep) pixel = (pixel >> 6 & 0xff0000) | (pixel >> 4 & 0xff00) | (pixel >> 2 & 0xff);
      pixel |= 0xff000000;
    }
    return pixels;
  }

 private:
  int between(int least, int most) {
    return std::uniform_int_distribution<int>(least, most)(_random);
  }
  /// Of every order of size, one pixel included; partly off the screen now and then.
  xcb_rectangle_t somewhere() {
    const int width = _screen->width_in_pixels;
    const int height = _screen->height_in_pixels;
    const auto length = [this](int most) {
      return static_cast<uint16_t>(between(1, std::max(1, most >> between(0, 9))));
    };
    return {static_cast<int16_t>(between(-8, width - 1)),
            static_cast<int16_t>(between(-8, height - 1)), length(width), length(height)};
  }
  void paintByRender(xcb_drawable_t on, const xcb_rectangle_t& area) {
    const xcb_render_picture_t picture = xcb_generate_id(_server.get());
    xcb_render_create_picture(_server.get(), picture, on, _renderFormat,
                              XCB_RENDER_CP_SUBWINDOW_MODE, &kAlsoOnWindows);
    const auto part = [this] { return static_cast<uint16_t>(_random()); };
    const xcb_render_color_t colour{part(), part(), part(), 0xffff};
    xcb_render_fill_rectangles(_server.get(), XCB_RENDER_PICT_OP_OVER, picture, colour, 1, &area);
    xcb_render_free_picture(_server.get(), picture);
  }
  void putShared(xcb_drawable_t on, const xcb_rectangle_t& area) {
    const size_t count = size_t{1} * area.width * area.height;
    const auto segment = _segments.take(count * 4);
    if (!segment) return paintByRender(on, area);
    // the server may still read what was put before
    finish();
    auto* pixels = reinterpret_cast<uint32_t*>(segment->memory.get());
    std::generate_n(pixels, count, std::ref(_random));
    xcb_shm_put_image(_server.get(), on, _context, area.width, area.height, 0, 0, area.width,
                      area.height, area.x, area.y, _screen->root_depth, XCB_IMAGE_FORMAT_Z_PIXMAP,
                      0, segment->number, 0);
  }

  x11::Connection _server;
  x11::SegmentPool _segments{_server};
  xcb_screen_t* _screen;
  std::mt19937 _random;
  xcb_gcontext_t _context;
  uint32_t _renderFormat = 0;
  std::vector<xcb_window_t> _windows;
};

}  // namespace tapdeck::testing
