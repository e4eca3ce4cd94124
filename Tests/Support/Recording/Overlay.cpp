// Overlay windows and timers, recorded.

#include <sstream>
#include <string>
#include <utility>

#include "Platform/OverlayWindow.h"
#include "Platform/RepeatingTimer.h"
#include "Tests/Support/Recording/Recording.h"

namespace tapdeck::platform {
namespace {

using recording::queued;
using recording::record;

std::ostream& operator<<(std::ostream& out, const Colour& colour) {
  return out << "rgba(" << colour.red << " " << colour.green << " " << colour.blue << " "
             << colour.alpha << ")";
}

std::string describe(const OverlayStyle& style) {
  std::ostringstream text;
  const CGRect& rect = style.contentRect;
  text << rect.size.width << "x" << rect.size.height << " at " << rect.origin.x << ","
       << rect.origin.y << " mask " << style.styleMask << " radius " << style.cornerRadius
       << " level " << style.level << std::hex << " behaviour 0x" << style.collectionBehaviour
       << std::dec << (style.isOpaque ? " opaque" : "") << (style.hasShadow ? " with a shadow" : "")
       << (style.ignoresMouseEvents ? " click-through" : "") << ", " << style.background
       << " under " << style.layerBackground << " at " << style.alpha << ", glow "
       << style.layerShadow << " at " << style.shadowOpacity << " over " << style.shadowRadius
       << " from " << style.shadowOffset.width << "," << style.shadowOffset.height;
  return text.str();
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
