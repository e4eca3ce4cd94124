#pragma once

#include <cstdint>
#include <optional>

#include "Platform/Linux/X11/Connection.h"
#include "Platform/Linux/X11/Input/Event.h"
#include "Platform/Linux/X11/Input/ScrollSteps.h"
#include "Platform/Linux/X11/Input/StepQueue.h"
#include "Platform/Linux/X11/PointSpace.h"
#include "Platform/Linux/X11/ServerState.h"

namespace tapdeck::quartz {

/// Carries events out. Every event goes through here, so that they arrive in the order of posting.
class EventPoster {
 public:
  EventPoster(Connection& connection, ServerState& server);
  EventPoster(const EventPoster&) = delete;
  EventPoster& operator=(const EventPoster&) = delete;

  /// Without the user's permission only releases of what this process has pressed still go out.
  void post(const __CGEvent& event);
  /// Moves the pointer without an event; needs no permission.
  void warp(Pixel pixel) { _queue.add(WarpStep{pixel}); }
  /// Waits some seconds at most for queued steps; then releases all that is pressed and restores
  /// the keymap.
  void letGo() { _queue.letGo(); }
  /// The position to which queued events will move the pointer; absent when none will.
  std::optional<Pixel> waitingMotion() { return _queue.waitingMotion(); }

 private:
  void carryOut(const __CGEvent& event);
  void postKey(const __CGEvent& event, bool isPermitted);
  bool move(CGPoint point);
  void press(uint8_t button);
  void release(uint8_t button, bool ownOnly);
  void scroll(const __CGEvent& event);
  void turnWheel(int steps, uint8_t positive, uint8_t negative);

  ServerState& _server;
  ScrollSteps _vertical;
  ScrollSteps _horizontal;
  StepQueue _queue;
};

}  // namespace tapdeck::quartz
