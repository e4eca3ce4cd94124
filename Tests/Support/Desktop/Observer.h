#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Platform/Linux/X11/Connection.h"
#include "Tests/Support/MainLoop.h"

namespace tapdeck::testing {

/// A client of the X server of its own, which sees what really arrived there.
class Observer : public x11::Connection {
 public:
  struct Pointer {
    int x, y;
    /// Which buttons are pressed: bit 0 is button 1.
    unsigned buttons;
    friend bool operator==(const Pointer&, const Pointer&) = default;
  };

  /// The owner of a reply or an event.
  template <typename Packet>
  static x11::Received<Packet> owned(Packet* packet) {
    return x11::Received<Packet>(packet);
  }

  /// Waits until the server has carried out all that came before.
  void sync() const { finish(); }
  Pointer pointer() const;

  /// Opens a white window that covers the whole screen and hears every button and motion.
  xcb_window_t coverScreen();
  /// Opens a window that the window manager looks after.
  xcb_window_t openManagedWindow(int x, int y);
  xcb_window_t activeWindow();
  /// What the covering window heard since the last call: "down 1 at 10,20",
  /// "move to 10,20 holding 1", "up 1 at 10,20".
  std::vector<std::string> heard() const;

  xcb_window_t createHiddenWindow() const;
  /// The window that owns a selection now, or XCB_WINDOW_NONE.
  xcb_window_t selectionOwner(const std::string& selection);
  /// As `xrandr --setmonitor` does it: a star before the name makes it primary, the geometry is
  /// such as "800/200x600/150+0+0" in pixels and millimetres.
  void setMonitor(const std::string& name, const std::string& geometry,
                  const std::string& output = "none") const;
  void deleteMonitor(const std::string& name);
  void mapButtons(std::vector<uint8_t> map) const;

  /// Becomes the desktop's settings manager with this property, or changes it.
  void publishSettings(const std::vector<uint8_t>& property);

 private:
  void map(xcb_window_t window);

  xcb_window_t _settings = XCB_WINDOW_NONE;
};

/// An XSETTINGS property that holds these whole numbers after one text and one colour.
std::vector<uint8_t> settingsProperty(const std::vector<std::pair<std::string, int32_t>>& numbers);

}  // namespace tapdeck::testing
