#pragma once

#include <sys/types.h>
#include <xcb/xcb.h>

#include <optional>

#include "Platform/Linux/X11/Capture/SegmentPool.h"
#include "Platform/Linux/X11/Connection.h"

namespace tapdeck::benchmarks {

/// What there is to see on the display: a picture like a photograph beside a page of text, and a
/// region in which something plays. Painted by a connection of its own; each call returns when the
/// server has painted.
class CaptureScene {
 public:
  CaptureScene();

  int width() const { return _width; }
  int height() const { return _height; }
  /// The X server's process.
  pid_t server() const;

  /// Everything moves on.
  void scroll();
  /// The region, one twentieth of the screen, moves on.
  void play();

 private:
  struct Rectangle {
    int x, y, width, height;
  };
  /// Puts a part of the canvas on the screen.
  void show(const Rectangle& part, int x, int y);
  void drawPhotograph();
  void drawText(int left, int width);
  uint32_t* row(int y) { return reinterpret_cast<uint32_t*>(_canvas->memory.get()) + y * _width; }

  x11::Connection _connection;
  x11::SegmentPool _segments;
  int _width;
  int _height;
  int _canvasHeight;
  /// Higher than the screen, so that it can be scrolled by.
  std::optional<x11::Segment> _canvas;
  xcb_window_t _window;
  xcb_gcontext_t _context;
  int _scrolled = 0;
  int _played = 0;
};

}  // namespace tapdeck::benchmarks
