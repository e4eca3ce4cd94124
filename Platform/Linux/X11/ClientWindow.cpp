#include "Platform/Linux/X11/ClientWindow.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <thread>

#include "Platform/Linux/X11/WindowManager.h"

namespace tapdeck::x11 {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr const char* kState = "_NET_WM_STATE";
constexpr const char* kFullScreen = "_NET_WM_STATE_FULLSCREEN";
constexpr const char* kMaximisedVertically = "_NET_WM_STATE_MAXIMIZED_VERT";
constexpr const char* kMaximisedHorizontally = "_NET_WM_STATE_MAXIMIZED_HORZ";
constexpr milliseconds kMaxWait{500};
constexpr milliseconds kPollInterval{5};

/// Widths along the edges of a window, in the order that EWMH has for them.
struct Extents {
  int left = 0, right = 0, top = 0, bottom = 0;
};

std::optional<Extents> extentsOf(Connection& connection, xcb_window_t window,
                                 const char* property) {
  const auto lengths = lengthsOf(connection, window, property);
  if (lengths.size() < 4) return std::nullopt;
  return Extents{lengths[0], lengths[1], lengths[2], lengths[3]};
}

/// How wide the shadow is that an application draws around its own frame; absent for one that draws
/// none.
std::optional<Extents> shadowOf(Connection& connection, xcb_window_t window) {
  return extentsOf(connection, window, "_GTK_FRAME_EXTENTS");
}

void waitUntil(const std::function<bool()>& condition) {
  const auto deadline = Clock::now() + kMaxWait;
  while (!condition() && Clock::now() < deadline) std::this_thread::sleep_for(kPollInterval);
}

void changeState(Connection& connection, xcb_window_t window, bool wanted, const char* first,
                 const char* second = nullptr) {
  const xcb_atom_t other = second != nullptr ? connection.atom(second) : xcb_atom_t{XCB_ATOM_NONE};
  sendToWindowManager(connection, window, kState,
                      {wanted ? 1U : 0U, connection.atom(first), other, kFromPager, 0});
}

bool fillsScreen(Connection& connection, xcb_window_t window) {
  return hasAnyAtom(connection, window, kState,
                    {kFullScreen, kMaximisedVertically, kMaximisedHorizontally});
}

/// Returns when the window manager has restored the size, and the application its frame and shadow,
/// which a window that fills the screen has not.
void restore(Connection& connection, xcb_window_t window) {
  changeState(connection, window, false, kMaximisedVertically, kMaximisedHorizontally);
  waitUntil([&] {
    if (fillsScreen(connection, window)) return false;
    const auto shadow = shadowOf(connection, window);
    return !shadow || shadow->left + shadow->right + shadow->top + shadow->bottom > 0;
  });
}

/// Moves the top-left corner of the frame: of the window itself only where there is no frame
/// (NorthWest gravity).
void moveFrame(Connection& connection, xcb_window_t window, int x, int y) {
  constexpr const char* kMoveResize = "_NET_MOVERESIZE_WINDOW";
  const auto values = {static_cast<uint32_t>(x), static_cast<uint32_t>(y)};
  if (hasAnyAtom(connection, connection.root(), "_NET_SUPPORTED", {kMoveResize})) {
    constexpr uint32_t kHasX = 1 << 8;
    constexpr uint32_t kHasY = 1 << 9;
    constexpr uint32_t kSourceShift = 12;
    sendToWindowManager(connection, window, kMoveResize,
                        {XCB_GRAVITY_NORTH_WEST | kHasX | kHasY | kFromPager << kSourceShift,
                         values.begin()[0], values.begin()[1], 0, 0});
    return;
  }
  xcb_configure_window(connection.get(), window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
                       values.begin());
  connection.flush();
}

}  // namespace

bool exists(Connection& connection, xcb_window_t window) {
  return connection.wait(xcb_get_geometry(connection.get(), window), xcb_get_geometry_reply) !=
         nullptr;
}

bool isFullScreen(Connection& connection, xcb_window_t window) {
  return hasAnyAtom(connection, window, kState, {kFullScreen});
}

void setFullScreen(Connection& connection, xcb_window_t window, bool wanted) {
  changeState(connection, window, wanted, kFullScreen);
  waitUntil([&] { return isFullScreen(connection, window) == wanted; });
}

void moveVisibleCorner(Connection& connection, xcb_window_t window, Pixel corner) {
  if (fillsScreen(connection, window)) restore(connection, window);
  const auto shadow = shadowOf(connection, window).value_or(Extents{});
  moveFrame(connection, window, corner.x - shadow.left, corner.y - shadow.top);
}

}  // namespace tapdeck::x11
