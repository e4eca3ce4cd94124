#include "Tests/Desktop/ScreenPainter.h"

#include <xcb/render.h>
#include <xcb/shm.h>

#include <algorithm>
#include <cstring>

namespace tapdeck::testing {
namespace {

constexpr int kWindows = 3;

uint32_t formatOf(const xcb_render_query_pict_formats_reply_t& formats, xcb_visualid_t visual) {
  for (auto screen = xcb_render_query_pict_formats_screens_iterator(&formats); screen.rem > 0;
       xcb_render_pictscreen_next(&screen)) {
    for (auto depth = xcb_render_pictscreen_depths_iterator(screen.data); depth.rem > 0;
         xcb_render_pictdepth_next(&depth)) {
      for (auto each = xcb_render_pictdepth_visuals_iterator(depth.data); each.rem > 0;
           xcb_render_pictvisual_next(&each)) {
        if (each.data->visual == visual) return each.data->format;
      }
    }
  }
  return 0;
}

}  // namespace

ScreenPainter::ScreenPainter(unsigned seed) : _random(seed) {
  _screen = xcb_setup_roots_iterator(xcb_get_setup(_server.get())).data;
  _context = xcb_generate_id(_server.get());
  const uint32_t alsoOnWindows = XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS;
  xcb_create_gc(_server.get(), _context, _screen->root, XCB_GC_SUBWINDOW_MODE, &alsoOnWindows);
  const auto formats = _server.wait(xcb_render_query_pict_formats(_server.get()),
                                    xcb_render_query_pict_formats_reply);
  _renderFormat = formatOf(*formats, _screen->root_visual);
  for (int i = 0; i < kWindows; ++i) {
    const xcb_window_t window = xcb_generate_id(_server.get());
    const uint32_t values[] = {static_cast<uint32_t>(_random()) & 0xffffff, 1};
    const xcb_rectangle_t place = somewhere();
    xcb_create_window(_server.get(), XCB_COPY_FROM_PARENT, window, _screen->root, place.x, place.y,
                      place.width, place.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
    xcb_map_window(_server.get(), window);
    _windows.push_back(window);
  }
}

int ScreenPainter::between(int least, int most) {
  return std::uniform_int_distribution<int>(least, most)(_random);
}

/// Of every order of size, one pixel included; partly off the screen now and then.
xcb_rectangle_t ScreenPainter::somewhere() {
  const auto length = [this](int most) { return between(1, std::max(1, most >> between(0, 9))); };
  return {static_cast<int16_t>(between(-8, width() - 1)),
          static_cast<int16_t>(between(-8, height() - 1)), static_cast<uint16_t>(length(width())),
          static_cast<uint16_t>(length(height()))};
}

void ScreenPainter::change() {
  const xcb_window_t window = _windows[static_cast<size_t>(between(0, kWindows - 1))];
  const xcb_drawable_t on = between(0, 1) == 0 ? _screen->root : window;
  switch (between(0, 3)) {
    case 0:
      paintCore(on);
      break;
    case 1:
      paintByRender(on);
      break;
    case 2:
      putShared(on);
      break;
    default:
      rearrange(window);
  }
  _server.flush();
}

void ScreenPainter::fill(int x, int y, int width, int height, uint32_t colour) {
  xcb_change_gc(_server.get(), _context, XCB_GC_FOREGROUND, &colour);
  const xcb_rectangle_t area{static_cast<int16_t>(x), static_cast<int16_t>(y),
                             static_cast<uint16_t>(width), static_cast<uint16_t>(height)};
  xcb_poly_fill_rectangle(_server.get(), _screen->root, _context, 1, &area);
  finish();
}

void ScreenPainter::paintCore(xcb_drawable_t on) {
  const auto colour = static_cast<uint32_t>(_random());
  xcb_change_gc(_server.get(), _context, XCB_GC_FOREGROUND, &colour);
  const xcb_rectangle_t area = somewhere();
  const auto right = static_cast<int16_t>(area.x + area.width);
  const auto bottom = static_cast<int16_t>(area.y + area.height);
  const xcb_point_t corners[] = {{area.x, area.y}, {right, bottom}};
  switch (between(0, 4)) {
    case 0:
      xcb_poly_fill_rectangle(_server.get(), on, _context, 1, &area);
      break;
    case 1:
      xcb_poly_line(_server.get(), XCB_COORD_MODE_ORIGIN, on, _context, 2, corners);
      break;
    case 2:
      xcb_poly_point(_server.get(), XCB_COORD_MODE_ORIGIN, on, _context, 2, corners);
      break;
    case 3:
      xcb_copy_area(_server.get(), on, on, _context, area.x, area.y,
                    static_cast<int16_t>(area.x + between(-20, 20)),
                    static_cast<int16_t>(area.y + between(-20, 20)), area.width, area.height);
      break;
    default:
      xcb_clear_area(_server.get(), 0, on, area.x, area.y, area.width, area.height);
  }
}

void ScreenPainter::paintByRender(xcb_drawable_t on) {
  const xcb_render_picture_t picture = xcb_generate_id(_server.get());
  const uint32_t alsoOnWindows = XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS;
  xcb_render_create_picture(_server.get(), picture, on, _renderFormat, XCB_RENDER_CP_SUBWINDOW_MODE,
                            &alsoOnWindows);
  const auto part = [this] { return static_cast<uint16_t>(_random()); };
  const xcb_render_color_t colour{part(), part(), part(), 0xffff};
  const xcb_rectangle_t area = somewhere();
  xcb_render_fill_rectangles(_server.get(), XCB_RENDER_PICT_OP_OVER, picture, colour, 1, &area);
  xcb_render_free_picture(_server.get(), picture);
}

void ScreenPainter::putShared(xcb_drawable_t on) {
  const xcb_rectangle_t area = somewhere();
  const size_t size = size_t{4} * area.width * area.height;
  const auto segment = _segments.take(size);
  if (!segment) return paintCore(on);
  // the server may still read what was put before
  finish();
  std::generate_n(reinterpret_cast<uint32_t*>(segment->memory.get()), size / 4, std::ref(_random));
  xcb_shm_put_image(_server.get(), on, _context, area.width, area.height, 0, 0, area.width,
                    area.height, area.x, area.y, _screen->root_depth, XCB_IMAGE_FORMAT_Z_PIXMAP, 0,
                    segment->number, 0);
}

void ScreenPainter::rearrange(xcb_window_t window) {
  const xcb_rectangle_t place = somewhere();
  const uint32_t geometry[] = {static_cast<uint32_t>(place.x), static_cast<uint32_t>(place.y),
                               place.width, place.height};
  const uint32_t above = XCB_STACK_MODE_ABOVE;
  switch (between(0, 3)) {
    case 0:
      xcb_unmap_window(_server.get(), window);
      break;
    case 1:
      xcb_map_window(_server.get(), window);
      break;
    case 2:
      xcb_configure_window(_server.get(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
      break;
    default:
      xcb_configure_window(_server.get(), window,
                           XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                               XCB_CONFIG_WINDOW_HEIGHT,
                           geometry);
  }
}

std::vector<uint32_t> ScreenPainter::pixels(int x, int y, int width, int height) const {
  const auto request = xcb_get_image(
      _server.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, _screen->root, static_cast<int16_t>(x),
      static_cast<int16_t>(y), static_cast<uint16_t>(width), static_cast<uint16_t>(height), ~0U);
  const auto reply = _server.wait(request, xcb_get_image_reply);
  std::vector<uint32_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
  std::memcpy(pixels.data(), xcb_get_image_data(reply.get()), pixels.size() * 4);
  for (uint32_t& pixel : pixels) {
    const bool isDeep = _screen->root_depth == 30;
    const uint32_t colours =
        isDeep ? (pixel >> 22 & 0xff) << 16 | (pixel >> 12 & 0xff) << 8 | (pixel >> 2 & 0xff)
               : pixel & 0xffffff;
    pixel = 0xff000000 | colours;
  }
  return pixels;
}

}  // namespace tapdeck::testing
