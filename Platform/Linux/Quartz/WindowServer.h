#pragma once

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace tapdeck::quartz {

/// The X server cannot be used; the text says why and what to do.
class WindowServerError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// One RandR 1.5 monitor.
struct Monitor {
  /// The atom of the monitor's name: the display's number for as long as the X server runs.
  uint32_t number;
  std::string name;
  /// In pixels of the root window, whose origin is its top-left corner.
  int x, y, width, height;
  friend bool operator==(const Monitor&, const Monitor&) = default;
};

/// Opens the connection to the X server of $DISPLAY and checks the extensions that the host needs
/// (XTEST, XFIXES, RANDR 1.5). Before anything else of Quartz, which until then answers as if the
/// server were gone; main thread, as all of this. A further call lets go, closes the connection and
/// opens another, without the observers of the first. Throws WindowServerError and changes nothing.
void connectToWindowServer();

/// The monitors, the primary one first, then in the server's order; asked afresh. Empty when there
/// is none or the server is gone.
std::vector<Monitor> monitors();

/// Pixels per point, the same for the whole X screen: the desktop's window scaling factor.
double pixelsPerPoint();

/// Calls `changed` after the list of monitors changed, once per change, from the GLib main loop.
/// A change of pixelsPerPoint() counts too. Throws WindowServerError.
void observeMonitors(std::function<void()> changed);

/// The process is about to end: from now on no keyboard event can be made, so that text that is
/// being typed stops at its next character, and letGo() drops what waits to be typed. Any thread.
void beginToEnd();

/// Releases every key and button that events posted here still hold pressed, and shows the cursor.
/// Returns when the server has done so. The end of the process by exit does it too.
void letGo();

}  // namespace tapdeck::quartz
