#include "Benchmarks/CaptureScene.h"

#include <sys/socket.h>
#include <xcb/shm.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <stdexcept>
#include <string>

namespace tapdeck::benchmarks {
namespace {

using x11::Received;

constexpr int kSteps = 32;
constexpr int kStepPixels = 23;
constexpr uint8_t kDepth = 24;
constexpr double kPhotographShare = 0.55;

double latticeValue(uint32_t x, uint32_t y, uint32_t layer) {
  uint32_t hash = x * 0x9e3779b1U ^ y * 0x85ebca77U ^ layer * 0xc2b2ae3dU;
  hash = (hash ^ (hash >> 15)) * 0x2c1b3c6dU;
  hash ^= hash >> 13;
  return static_cast<double>(hash & 0xffff) / 0xffff;
}

/// Values from 0 to 1 that change smoothly over `cell` pixels.
double smoothNoise(int x, int y, int cell, uint32_t layer) {
  const auto column = static_cast<uint32_t>(x / cell);
  const auto line = static_cast<uint32_t>(y / cell);
  const auto eased = [cell](int position) {
    const double t = static_cast<double>(position % cell) / cell;
    return t * t * (3 - 2 * t);
  };
  const double right = eased(x);
  const double down = eased(y);
  const double above =
      std::lerp(latticeValue(column, line, layer), latticeValue(column + 1, line, layer), right);
  const double below = std::lerp(latticeValue(column, line + 1, layer),
                                 latticeValue(column + 1, line + 1, layer), right);
  return std::lerp(above, below, down);
}

/// Light, shapes with edges, texture and a sensor's grain.
uint32_t photographPixel(int x, int y, std::minstd_rand& grain) {
  const double light = smoothNoise(x, y, 600, 1);
  const double texture = 0.6 * smoothNoise(x, y, 90, 2) + 0.25 * smoothNoise(x, y, 17, 3) +
                         0.15 * smoothNoise(x, y, 5, 4);
  const bool isObject = smoothNoise(x, y, 220, 5) > 0.55;
  const double blue = isObject ? 60 * texture + 20 : 160 * light + 60 * texture + 30;
  const double green = isObject ? 150 * texture + 40 * light : 130 * light + 60 * texture + 30;
  const double red = isObject ? 110 * texture + 90 * light : 90 * light + 60 * texture + 20;
  const auto channel = [&grain](double value) {
    return static_cast<uint32_t>(
        std::clamp(value + static_cast<double>(grain() % 7) - 3, 0., 255.));
  };
  const uint32_t bytes = channel(blue);
  return bytes | channel(green) << 8 | channel(red) << 16;
}

std::string textLine(std::minstd_rand& random, size_t length) {
  static constexpr const char* kWords[] = {"the",   "screen", "return", "window", "of",    "{",
                                           "phone", "static", "pixel",  "=",      "often", "42;",
                                           "const", "light",  "number", "in",     "table", "(x)"};
  std::string line(random() % 3 * 4, ' ');
  while (line.size() < length) line += std::string(kWords[random() % std::size(kWords)]) + " ";
  if (random() % 4 == 0) line.resize(length / 3);
  line.resize(std::min(line.size(), length));
  return line;
}

}  // namespace

CaptureScene::CaptureScene() : _segments(_connection) {
  xcb_connection_t* connection = _connection.get();
  const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
  _width = screen->width_in_pixels;
  _height = screen->height_in_pixels;
  _canvasHeight = _height + kSteps * kStepPixels;
  _canvas = _segments.take(static_cast<size_t>(_width) * static_cast<size_t>(_canvasHeight) * 4);
  if (!_canvas || screen->root_depth != kDepth) throw std::runtime_error("no display for a scene");

  _window = xcb_generate_id(connection);
  const uint32_t isPlacedByUs = 1;
  xcb_create_window(connection, XCB_COPY_FROM_PARENT, _window, screen->root, 0, 0,
                    screen->width_in_pixels, screen->height_in_pixels, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
                    &isPlacedByUs);
  xcb_map_window(connection, _window);
  _context = xcb_generate_id(connection);
  xcb_create_gc(connection, _context, _window, 0, nullptr);

  drawPhotograph();
  const int left = static_cast<int>(_width * kPhotographShare);
  drawText(left, _width - left);
  scroll();
}

pid_t CaptureScene::server() const {
  ucred peer{};
  socklen_t length = sizeof peer;
  if (getsockopt(xcb_get_file_descriptor(_connection.get()), SOL_SOCKET, SO_PEERCRED, &peer,
                 &length) != 0) {
    throw std::runtime_error("the X server's process is not known");
  }
  return peer.pid;
}

void CaptureScene::scroll() {
  _scrolled = (_scrolled + 1) % kSteps;
  show({0, _scrolled * kStepPixels, _width, _height}, 0, 0);
  play();
}

void CaptureScene::play() {
  _played = (_played + 1) % kSteps;
  const Rectangle picture{_played * 5, _played * kStepPixels, _width / 4, _height / 5};
  show(picture, _width * 3 / 5, _height * 7 / 10);
}

void CaptureScene::show(const Rectangle& part, int x, int y) {
  xcb_shm_put_image(_connection.get(), _window, _context, static_cast<uint16_t>(_width),
                    static_cast<uint16_t>(_canvasHeight), static_cast<uint16_t>(part.x),
                    static_cast<uint16_t>(part.y), static_cast<uint16_t>(part.width),
                    static_cast<uint16_t>(part.height), static_cast<int16_t>(x),
                    static_cast<int16_t>(y), kDepth, XCB_IMAGE_FORMAT_Z_PIXMAP, 0, _canvas->number,
                    0);
  _connection.sync();
}

void CaptureScene::drawPhotograph() {
  std::minstd_rand grain(1);
  for (int y = 0; y < _canvasHeight; ++y) {
    uint32_t* pixels = row(y);
    for (int x = 0; x < _width; ++x) pixels[x] = photographPixel(x, y, grain);
  }
}

/// Drawn by the server with a font of its own, and fetched.
void CaptureScene::drawText(int left, int width) {
  static constexpr std::string_view kFont = "10x20";
  static constexpr int kAdvance = 10;
  static constexpr int kLineHeight = 24;
  xcb_connection_t* connection = _connection.get();
  const auto columns = static_cast<uint16_t>(width);
  const auto rows = static_cast<uint16_t>(_canvasHeight);
  const xcb_pixmap_t page = xcb_generate_id(connection);
  const xcb_font_t font = xcb_generate_id(connection);
  const xcb_gcontext_t ink = xcb_generate_id(connection);
  xcb_create_pixmap(connection, kDepth, page, _window, columns, rows);
  xcb_open_font(connection, font, kFont.size(), kFont.data());
  const uint32_t white = 0xffffff;
  const uint32_t values[] = {white, white, font};
  xcb_create_gc(connection, ink, page, XCB_GC_FOREGROUND | XCB_GC_BACKGROUND | XCB_GC_FONT, values);
  const xcb_rectangle_t all{0, 0, columns, rows};
  xcb_poly_fill_rectangle(connection, page, ink, 1, &all);

  std::minstd_rand random(2);
  const uint32_t colours[] = {0x202020, 0x202020, 0x1f4fa8, 0x8a2c2c};
  for (int y = kLineHeight; y < _canvasHeight; y += kLineHeight) {
    xcb_change_gc(connection, ink, XCB_GC_FOREGROUND, &colours[random() % std::size(colours)]);
    const size_t fitting = std::min(static_cast<size_t>(width / kAdvance - 2), size_t{255});
    const std::string line = textLine(random, fitting);
    xcb_image_text_8(connection, static_cast<uint8_t>(line.size()), page, ink, kAdvance,
                     static_cast<int16_t>(y), line.c_str());
  }
  const auto image = _connection.wait(
      xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, page, 0, 0, columns, rows, ~0U),
      xcb_get_image_reply);
  if (image == nullptr) throw std::runtime_error("the page of text cannot be drawn");
  const auto* pixels = reinterpret_cast<const uint32_t*>(xcb_get_image_data(image.get()));
  for (int y = 0; y < _canvasHeight; ++y) {
    std::copy_n(pixels + static_cast<ptrdiff_t>(y) * width, width, row(y) + left);
  }
  xcb_free_pixmap(connection, page);
  xcb_free_gc(connection, ink);
  xcb_close_font(connection, font);
}

}  // namespace tapdeck::benchmarks
