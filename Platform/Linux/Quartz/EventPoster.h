#pragma once

#include <cstdint>
#include <map>
#include <optional>

#include "Platform/Linux/Quartz/Connection.h"
#include "Platform/Linux/Quartz/Event.h"
#include "Platform/Linux/Quartz/PointSpace.h"
#include "Platform/Linux/Quartz/ScrollSteps.h"

namespace tapdeck::quartz {

/// Carries events out by XTEST. Every event goes through here, so that they arrive in the order of
/// posting and what stays pressed is known. The server keeps pressed what a client pressed even
/// after that client is gone; hence `letGo`.
class EventPoster {
 public:
  explicit EventPoster(Connection& connection);
  ~EventPoster() { letGo(); }
  EventPoster(const EventPoster&) = delete;
  EventPoster& operator=(const EventPoster&) = delete;

  /// Without the user's permission only releases of what is held here still go out.
  void post(const __CGEvent& event);
  void letGo();

 private:
  void carryOut(const __CGEvent& event);
  bool move(CGPoint point);
  void press(uint8_t button);
  void release(uint8_t button);
  void scroll(const __CGEvent& event);
  void turnWheel(int steps, uint8_t positive, uint8_t negative);
  std::optional<uint8_t> physicalButton(uint8_t button) const;
  void fake(uint8_t type, uint8_t detail, Pixel pixel = {0, 0});

  Connection& _connection;
  /// The X button as applications see it, and the physical one that was pressed for it.
  std::map<uint8_t, uint8_t> _held;
  ScrollSteps _vertical;
  ScrollSteps _horizontal;
};

}  // namespace tapdeck::quartz
