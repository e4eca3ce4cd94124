#include "Platform/OverlayWindow.h"

#include <xcb/xfixes.h>

#include <algorithm>
#include <cmath>
#include <optional>

#include "Platform/Linux/Fronts/DotShape.h"
#include "Platform/Linux/X11/PointSpace.h"
#include "Platform/Linux/X11/Session/ServerSession.h"

namespace tapdeck::platform {
namespace {

using x11::Connection;

// of the SHAPE extension, whose own header is needed for nothing else
constexpr xcb_shape_kind_t kBounding = 0;
constexpr xcb_shape_kind_t kInput = 2;
constexpr uint8_t kArgbDepth = 32;

/// Whether a compositing manager runs; without one no window is translucent.
bool isComposited(Connection& connection) {
  const auto selection =
      connection.atom("_NET_WM_CM_S" + std::to_string(connection.screenNumber()));
  const auto owner = connection.wait(xcb_get_selection_owner(connection.get(), selection),
                                     xcb_get_selection_owner_reply);
  return owner != nullptr && owner->owner != XCB_WINDOW_NONE;
}

std::optional<xcb_visualid_t> argbVisual(const Connection& connection) {
  for (auto depth = xcb_screen_allowed_depths_iterator(&connection.screen()); depth.rem > 0;
       xcb_depth_next(&depth)) {
    const auto visuals = xcb_depth_visuals_iterator(depth.data);
    if (depth.data->depth == kArgbDepth && visuals.rem > 0) return visuals.data->visual_id;
  }
  return std::nullopt;
}

uint16_t on16Bits(double component) {
  return static_cast<uint16_t>(std::lround(std::clamp(component, 0.0, 1.0) * 0xffff));
}

}  // namespace

/// An override-redirect window, which window managers leave alone. Where there is a compositor it
/// looks as the style says; else it is a disc of the layer's colour.
struct OverlayWindow::Window {
  explicit Window(const OverlayStyle& style)
      : session(x11::session()), size(style.contentRect.size) {
    origin = style.contentRect.origin;
    if (!isReachable()) return;
    Connection& connection = session->connection;
    side = static_cast<int>(std::lround(size.width * x11::pixelsPerPoint()));
    const auto visual = isComposited(connection) ? argbVisual(connection) : std::nullopt;
    visual ? createTranslucent(connection, *visual, style) : createDisc(connection, style);
    if (style.ignoresMouseEvents) setShape(connection, kInput, {});
    connection.flush();
  }

  ~Window() {
    if (!isReachable()) return;
    xcb_destroy_window(session->connection.get(), window);
    if (colours != XCB_NONE) xcb_free_colormap(session->connection.get(), colours);
    session->connection.flush();
  }

  /// False once the session that the window was made in has ended, and the window with it.
  bool isReachable() const { return session != nullptr && session == x11::session(); }

  void createTranslucent(Connection& connection, xcb_visualid_t visual, const OverlayStyle& style) {
    xcb_connection_t* server = connection.get();
    const auto extent = static_cast<uint16_t>(side);
    colours = xcb_generate_id(server);
    xcb_create_colormap(server, XCB_COLORMAP_ALLOC_NONE, colours, connection.root(), visual);
    const auto pixels = layerPixels(style, side, side / size.width);
    const xcb_pixmap_t pixmap = xcb_generate_id(server);
    xcb_create_pixmap(server, kArgbDepth, pixmap, connection.root(), extent, extent);
    const xcb_gcontext_t context = xcb_generate_id(server);
    xcb_create_gc(server, context, pixmap, 0, nullptr);
    xcb_put_image(server, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, context, extent, extent, 0, 0, 0,
                  kArgbDepth, static_cast<uint32_t>(pixels.size() * sizeof pixels[0]),
                  reinterpret_cast<const uint8_t*>(pixels.data()));
    // a window of another depth than its parent must have its own border and colours
    const uint32_t values[] = {pixmap, 0, 1, colours};
    create(connection, kArgbDepth, visual,
           XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_COLORMAP,
           values);
    xcb_free_gc(server, context);
    xcb_free_pixmap(server, pixmap);
  }

  void createDisc(Connection& connection, const OverlayStyle& style) {
    const Colour& colour = style.layerBackground;
    const auto allocated = connection.wait(
        xcb_alloc_color(connection.get(), connection.screen().default_colormap,
                        on16Bits(colour.red), on16Bits(colour.green), on16Bits(colour.blue)),
        xcb_alloc_color_reply);
    const uint32_t values[] = {allocated != nullptr ? allocated->pixel : 0, 1};
    create(connection, XCB_COPY_FROM_PARENT, XCB_COPY_FROM_PARENT,
           XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
    setShape(connection, kBounding, discRows(side));
  }

  void create(Connection& connection, uint8_t depth, xcb_visualid_t visual, uint32_t mask,
              const uint32_t* values) {
    const auto extent = static_cast<uint16_t>(side);
    window = xcb_generate_id(connection.get());
    xcb_create_window(connection.get(), depth, window, connection.root(), 0, 0, extent, extent, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, visual, mask, values);
  }

  void setShape(Connection& connection, xcb_shape_kind_t kind,
                const std::vector<xcb_rectangle_t>& rows) const {
    const xcb_xfixes_region_t region = xcb_generate_id(connection.get());
    xcb_xfixes_create_region(connection.get(), region, static_cast<uint32_t>(rows.size()),
                             rows.data());
    xcb_xfixes_set_window_shape_region(connection.get(), window, kind, 0, 0, region);
    xcb_xfixes_destroy_region(connection.get(), region);
  }

  /// Moves the window to its origin and raises it above whatever was shown since, such as a
  /// full-screen window or a menu.
  void placeOnTop() const {
    const auto monitors = x11::monitors();
    if (!isReachable() || monitors.empty()) return;
    const x11::PointSpace space(monitors, x11::pixelsPerPoint());
    const CGFloat primaryHeight = CGRectGetHeight(space.rectOf(monitors.front()));
    const auto corner =
        space.pixelAt(CGPointMake(origin.x, primaryHeight - origin.y - size.height));
    if (!corner) return;
    const uint32_t values[] = {static_cast<uint32_t>(corner->x), static_cast<uint32_t>(corner->y),
                               XCB_STACK_MODE_ABOVE};
    xcb_configure_window(session->connection.get(), window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_STACK_MODE,
                         values);
    session->connection.flush();
  }

  x11::ServerSession* session;
  CGSize size;
  /// As AppKit has it: the bottom-left corner, from the primary screen's bottom-left corner.
  CGPoint origin;
  /// In pixels.
  int side = 0;
  xcb_window_t window = XCB_WINDOW_NONE;
  xcb_colormap_t colours = XCB_NONE;
};

OverlayWindow::OverlayWindow(const OverlayStyle& style)
    : _window(std::make_unique<Window>(style)) {}

OverlayWindow::~OverlayWindow() = default;

CGRect OverlayWindow::frame() const {
  return {_window->origin, _window->size};
}

void OverlayWindow::setFrameOrigin(CGPoint origin) {
  _window->origin = origin;
  _window->placeOnTop();
}

void OverlayWindow::orderFrontRegardless() {
  if (!_window->isReachable()) return;
  xcb_map_window(_window->session->connection.get(), _window->window);
  _window->placeOnTop();
}

void OverlayWindow::orderOut() {
  if (!_window->isReachable()) return;
  xcb_unmap_window(_window->session->connection.get(), _window->window);
  _window->session->connection.flush();
}

}  // namespace tapdeck::platform
