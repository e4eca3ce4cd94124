#include "Runner/Display/LaserPointer.h"

#include "Platform/Events.h"
#include "Platform/OverlayWindow.h"
#include "Platform/Queues.h"
#include "Platform/RepeatingTimer.h"

namespace tapdeck {
namespace {

using platform::OverlayStyle;
using platform::OverlayWindow;
using platform::RepeatingTimer;

constexpr double kSide = 26;
constexpr double kFollowInterval = 1.0 / 60;

constexpr uint64_t kBorderless = 0;
constexpr uint64_t kCanJoinAllSpaces = 1 << 0;
constexpr uint64_t kStationary = 1 << 4;
constexpr uint64_t kIgnoresCycle = 1 << 6;
constexpr uint64_t kFullScreenAuxiliary = 1 << 8;

OverlayStyle dotStyle() {
  return {
      .contentRect = CGRectMake(0, 0, kSide, kSide),
      .styleMask = kBorderless,
      .isOpaque = false,
      .background = {0, 0, 0, 0},
      .hasShadow = false,
      .ignoresMouseEvents = true,
      .alpha = 0.85,
      .level = CGShieldingWindowLevel(),
      .collectionBehaviour = kCanJoinAllSpaces | kStationary | kIgnoresCycle | kFullScreenAuxiliary,
      .layerBackground = {0.78, 0, 0, 1},
      .cornerRadius = kSide / 2,
      .layerShadow = {1, 0, 0, 1},
      .shadowOpacity = 0.9F,
      .shadowRadius = 5,
      .shadowOffset = {0, 0},
  };
}

void centreOnPointer(OverlayWindow& dot) {
  const CGPoint pointer = platform::mouseLocation();
  const double half = CGRectGetWidth(dot.frame()) / 2;
  dot.setFrameOrigin(CGPointMake(pointer.x - half, pointer.y - half));
}

void show(const std::shared_ptr<MainFlutterWindow>& window) {
  if (window->_laserWindow != nullptr) return;
  window->_laserWindow = std::make_shared<OverlayWindow>(dotStyle());
  centreOnPointer(*window->_laserWindow);
  window->_laserWindow->orderFrontRegardless();
  window->_laserTimer =
      std::make_shared<RepeatingTimer>(kFollowInterval, [weak = std::weak_ptr(window)] {
        const auto held = weak.lock();
        if (held != nullptr && held->_laserWindow != nullptr) centreOnPointer(*held->_laserWindow);
      });
}

void hide(const std::shared_ptr<MainFlutterWindow>& window) {
  if (window->_laserTimer != nullptr) window->_laserTimer->invalidate();
  window->_laserTimer = nullptr;
  if (window->_laserWindow != nullptr) window->_laserWindow->orderOut();
  window->_laserWindow = nullptr;
}

void onMainQueue(const std::shared_ptr<MainFlutterWindow>& window,
                 void (*work)(const std::shared_ptr<MainFlutterWindow>&)) {
  platform::asyncOnMain([weak = std::weak_ptr(window), work] {
    if (const auto held = weak.lock()) work(held);
  });
}

}  // namespace

void showLaser(const std::shared_ptr<MainFlutterWindow>& window) {
  onMainQueue(window, show);
}

void hideLaser(const std::shared_ptr<MainFlutterWindow>& window) {
  onMainQueue(window, hide);
}

}  // namespace tapdeck
