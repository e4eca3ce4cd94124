#pragma once

#include <xcb/xproto.h>

#include <optional>
#include <vector>

#include "Platform/Linux/Pixels/Pixels.h"
#include "Platform/Linux/X11/Connection.h"

namespace tapdeck::x11 {

/// What has been painted on the root window and its descendants (the DAMAGE extension).
class Damage {
 public:
  explicit Damage(Connection& connection);
  ~Damage();
  Damage(const Damage&) = delete;
  Damage& operator=(const Damage&) = delete;

  /// The areas painted since the last call. What is painted between this and the grab that follows
  /// is grabbed already and in the next call's areas too. Absent when anything may have changed:
  /// the server has no DAMAGE extension, is gone, or has resized the screen.
  std::optional<std::vector<pixels::Area>> take();

 private:
  Connection& _connection;
  uint32_t _damage = XCB_NONE;
  uint32_t _region = XCB_NONE;
  uint16_t _rootWidth = 0;
  uint16_t _rootHeight = 0;
};

}  // namespace tapdeck::x11
