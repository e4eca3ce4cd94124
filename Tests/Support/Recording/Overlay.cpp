// Overlay windows and timers, recorded.

#include <cstdio>
#include <string>
#include <utility>

#include "Platform/OverlayWindow.h"
#include "Platform/RepeatingTimer.h"
#include "Tests/Support/Recording/Recording.h"

namespace tapdeck::platform {
namespace {

using recording::queued;
using recording::record;

std::string describe(const OverlayStyle& style) {
  char text[96];
  const CGRect& rect = style.contentRect;
  std::snprintf(text, sizeof text, "%gx%g radius %g level %d behaviour 0x%llx%s%s", rect.size.width,
                rect.size.height, style.cornerRadius, style.level,
                static_cast<unsigned long long>(style.collectionBehaviour),
                style.isOpaque ? " opaque" : "", style.ignoresMouseEvents ? " click-through" : "");
  return text;
}

}  // namespace

struct OverlayWindow::Window {
  CGRect frame;
};

OverlayWindow::OverlayWindow(const OverlayStyle& style)
    : _window(std::make_unique<Window>(Window{style.contentRect})) {
  record("overlay " + describe(style));
}

OverlayWindow::~OverlayWindow() = default;

CGRect OverlayWindow::frame() const {
  return _window->frame;
}

void OverlayWindow::setFrameOrigin(CGPoint origin) {
  _window->frame.origin = origin;
  record("overlay to " + recording::describe(origin));
}

void OverlayWindow::orderFrontRegardless() {
  record("overlay to the front");
}

void OverlayWindow::orderOut() {
  record("overlay out");
}

struct RepeatingTimer::Timer {
  int number;
};

RepeatingTimer::RepeatingTimer(double interval, std::function<void()> fired)
    : _timer(std::make_unique<Timer>(Timer{++queued().timersMade})) {
  char text[64];
  std::snprintf(text, sizeof text, "timer every %.6g s", interval);
  record(text);
  queued().timers[_timer->number] = std::move(fired);
}

RepeatingTimer::~RepeatingTimer() {
  queued().timers.erase(_timer->number);
}

void RepeatingTimer::invalidate() {
  if (queued().timers.erase(_timer->number) > 0) record("timer ended");
}

}  // namespace tapdeck::platform
