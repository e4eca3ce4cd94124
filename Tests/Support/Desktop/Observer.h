#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "Tests/Support/MainLoop.h"

namespace tapdeck::testing {

/// A client of the X server of its own, which sees what really arrived there.
class Observer {
 public:
  struct Pointer {
    int x, y;
    /// Which buttons are pressed: bit 0 is button 1.
    unsigned buttons;
    friend bool operator==(const Pointer&, const Pointer&) = default;
  };

  Observer();
  Observer(const Observer&) = delete;
  Observer& operator=(const Observer&) = delete;

  /// The owner of a reply or an event.
  template <typename Packet>
  static std::unique_ptr<Packet, decltype(&std::free)> owned(Packet* packet) {
    return {packet, &std::free};
  }

  xcb_connection_t* get() const { return _connection.get(); }
  xcb_window_t root() const { return _screen->root; }
  /// Waits until the server has carried out all that came before.
  void sync() const;
  Pointer pointer() const;

  /// Opens a white window that covers the whole screen and hears every button and motion.
  xcb_window_t coverScreen();
  /// Opens a window that the window manager looks after.
  xcb_window_t openManagedWindow(int x, int y);
  xcb_window_t activeWindow() const;
  /// What the covering window heard since the last call: "down 1 at 10,20",
  /// "move to 10,20 holding 1", "up 1 at 10,20".
  std::vector<std::string> heard() const;

  xcb_atom_t atom(const std::string& name) const;
  std::string nameOf(xcb_atom_t atom) const;
  xcb_window_t createHiddenWindow() const;
  /// The window that owns a selection now, or XCB_WINDOW_NONE.
  xcb_window_t selectionOwner(const std::string& selection) const;
  /// As `xrandr --setmonitor` does it: a star before the name makes it primary, the geometry is
  /// such as "800/200x600/150+0+0" in pixels and millimetres.
  void setMonitor(const std::string& name, const std::string& geometry,
                  const std::string& output = "none") const;
  void deleteMonitor(const std::string& name) const;
  void mapButtons(std::vector<uint8_t> map) const;

  /// Becomes the desktop's settings manager with this property, or changes it.
  void publishSettings(const std::vector<uint8_t>& property);

 private:
  void map(xcb_window_t window);

  std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> _connection;
  xcb_screen_t* _screen;
  xcb_window_t _settings = XCB_WINDOW_NONE;
};

/// An XSETTINGS property that holds these whole numbers after one text and one colour.
std::vector<uint8_t> settingsProperty(const std::vector<std::pair<std::string, int32_t>>& numbers);

}  // namespace tapdeck::testing
