#pragma once

#include <glib.h>

#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "Platform/Linux/X11/Connection.h"
#include "Platform/Linux/X11/Monitors.h"
#include "Platform/Linux/X11/PointSpace.h"
#include "Platform/Linux/X11/XSettings.h"

namespace tapdeck::x11 {

/// A cache of what the X server sends an event about when it changes: the monitors, the desktop's
/// settings, the order of the pointer's buttons. Each is queried once, and again after an event
/// about it, so that reading it costs no round trip. It has a connection of its own, because
/// Connection::flush drops events. Main thread; default GLib main context.
class ServerState {
 public:
  /// Throws WindowServerError.
  ServerState();
  ~ServerState();
  ServerState(const ServerState&) = delete;
  ServerState& operator=(const ServerState&) = delete;

  /// The primary one first. Empty when there is none or the server is gone.
  const std::vector<Monitor>& monitors();
  /// The desktop's window scaling factor, which holds for the whole X screen.
  double pixelsPerPoint();
  PointSpace pointSpace() { return {monitors(), pixelsPerPoint()}; }
  /// A whole-number setting of the desktop (XSETTINGS); absent when it has none of this name.
  std::optional<int32_t> setting(std::string_view name);
  /// The physical button that gives this logical one: XTEST presses physical buttons, which the
  /// user may have swapped (SetPointerMapping). Absent when there is none.
  std::optional<uint8_t> physicalButton(uint8_t button);

  /// Calls `changed` after the monitors or the scale changed, once per rearrangement, from the
  /// main loop.
  void observe(std::function<void()> changed);

 private:
  struct Displays {
    std::vector<Monitor> monitors;
    double pixelsPerPoint;
    friend bool operator==(const Displays&, const Displays&) = default;
  };

  void selectEvents();
  void readEvents();
  void handle(const xcb_generic_event_t& event);
  const IntegerSettings& settings();
  const std::vector<uint8_t>& buttonMapping();
  Displays displays() { return {monitors(), pixelsPerPoint()}; }
  void scheduleComparison();
  void compare();
  static gboolean onReadable(int descriptor, GIOCondition condition, gpointer self) noexcept;
  static gboolean onQuiet(gpointer self) noexcept;

  Connection _connection;
  /// Absent until it is queried, and after an event about it.
  std::optional<std::vector<Monitor>> _monitors;
  std::optional<IntegerSettings> _settings;
  /// The logical button that each physical one gives, from the first one.
  std::optional<std::vector<uint8_t>> _buttonMapping;
  std::vector<std::function<void()>> _observers;
  Displays _lastReported{};
  guint _readableSource = 0;
  guint _quietSource = 0;
};

}  // namespace tapdeck::x11
