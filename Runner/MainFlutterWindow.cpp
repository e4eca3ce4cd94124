#include "Runner/MainFlutterWindow.h"

namespace tapdeck {

MainFlutterWindow::~MainFlutterWindow() = default;

void MainFlutterWindow::showCursorOnBecomingKey() {
  _shouldHideCursor = false;
  CGDisplayShowCursor(CGMainDisplayID());
}

}  // namespace tapdeck
