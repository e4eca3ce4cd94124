#include "Platform/Linux/Application/SingleInstance.h"

#include <X11/Xlib.h>
#include <gdk/gdkx.h>

#include <chrono>
#include <thread>

namespace tapdeck {
namespace {

/// The server may not have noticed yet that a host has just ended.
constexpr std::chrono::milliseconds kTimeout{500};
constexpr std::chrono::milliseconds kRetryInterval{20};

}  // namespace

bool claimDisplay() {
  Display* display = gdk_x11_get_default_xdisplay();
  const Atom selection = XInternAtom(display, "_TAPDECK_HOST", False);
  const auto end = std::chrono::steady_clock::now() + kTimeout;
  while (XGetSelectionOwner(display, selection) != None) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(kRetryInterval);
  }
  const Window window =
      XCreateSimpleWindow(display, DefaultRootWindow(display), -1, -1, 1, 1, 0, 0, 0);
  XSetSelectionOwner(display, selection, window, CurrentTime);
  return XGetSelectionOwner(display, selection) == window;
}

}  // namespace tapdeck
