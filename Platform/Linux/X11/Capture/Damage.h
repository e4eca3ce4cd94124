#pragma once

#include <xcb/xproto.h>

#include <optional>
#include <vector>

#include "Platform/Linux/Pixels/Pixels.h"
#include "Platform/Linux/X11/Connection.h"

namespace tapdeck::quartz {

/// What has been painted on the root window and all that stands on it.
class Damage {
 public:
  explicit Damage(Connection& connection);
  ~Damage();
  Damage(const Damage&) = delete;
  Damage& operator=(const Damage&) = delete;

  /// What was painted since the last call. What is grabbed after it may hold more, which the next
  /// call tells. Absent when nothing is known, so that anything may be different: the server has no
  /// DAMAGE, is gone, or has made the screen anew.
  std::optional<std::vector<Area>> take();

 private:
  Connection& _connection;
  uint32_t _damage = XCB_NONE;
  uint32_t _region = XCB_NONE;
  uint16_t _rootWidth = 0;
  uint16_t _rootHeight = 0;
};

}  // namespace tapdeck::quartz
