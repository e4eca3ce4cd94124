#pragma once

#include <glib.h>

#include <functional>
#include <memory>
#include <vector>

#include "Platform/Linux/Quartz/Connection.h"
#include "Platform/Linux/Quartz/WindowServer.h"

namespace tapdeck::quartz {

/// Tells when the monitors or their scale changed. Has a connection of its own, so that no other
/// part's round trip swallows its events; reads it from the default GLib main context.
class MonitorWatch {
 public:
  MonitorWatch() = default;
  ~MonitorWatch();
  MonitorWatch(const MonitorWatch&) = delete;
  MonitorWatch& operator=(const MonitorWatch&) = delete;

  /// The first call opens the connection; throws WindowServerError when that fails.
  void observe(std::function<void()> changed);

 private:
  struct Displays {
    std::vector<Monitor> monitors;
    double pixelsPerPoint;
    friend bool operator==(const Displays&, const Displays&) = default;
  };

  void start();
  void selectEvents();
  void followSettings();
  bool readEvents();
  void compareSoon();
  void compare();
  static gboolean onReadable(int descriptor, GIOCondition condition, gpointer self) noexcept;
  static gboolean onQuiet(gpointer self) noexcept;

  std::unique_ptr<Connection> _connection;
  std::vector<std::function<void()>> _observers;
  Displays _known{};
  guint _readableSource = 0;
  guint _quietSource = 0;
};

}  // namespace tapdeck::quartz
