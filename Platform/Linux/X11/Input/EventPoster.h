#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <utility>

#include "Platform/Linux/X11/Connection.h"
#include "Platform/Linux/X11/Input/Event.h"
#include "Platform/Linux/X11/Input/ScrollSteps.h"
#include "Platform/Linux/X11/Input/StepQueue.h"
#include "Platform/Linux/X11/PointSpace.h"
#include "Platform/Linux/X11/ServerState.h"

namespace tapdeck::x11 {

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
  /// Sets the function that is offered the media keys (NX_KEYTYPE_) that no program has grabbed; a
  /// key for which it returns true is not sent. Null for none.
  void offerMediaKeys(std::function<bool(uint32_t keyType)> take) {
    _takeMediaKey = std::move(take);
  }
  /// Waits some seconds at most for queued steps; then releases all that is pressed and restores
  /// the keymap.
  void releaseEverything() { _queue.releaseEverything(); }
  /// The position to which queued events will move the pointer; absent when none will.
  std::optional<Pixel> waitingMotion() { return _queue.waitingMotion(); }
  /// Whether the press of a button still waits to be sent.
  bool isPressWaiting() { return _queue.isPressWaiting(); }

 private:
  void carryOut(const __CGEvent& event);
  void postKey(const __CGEvent& event, bool isPermitted);
  /// Whether the function that is offered media keys takes this one.
  bool isTaken(const __CGEvent& event, const UsKey& key, bool isPermitted);
  bool isGrabbed(const UsKey& key) const;
  bool move(CGPoint point);
  void press(uint8_t button);
  void release(uint8_t button, bool ownOnly);
  void scroll(const __CGEvent& event);
  void turnWheel(int steps, uint8_t positive, uint8_t negative);

  Connection& _connection;
  ServerState& _server;
  std::function<bool(uint32_t keyType)> _takeMediaKey;
  /// Those whose press was taken: their release is not sent either.
  std::set<uint32_t> _takenMediaKeys;
  ScrollSteps _vertical;
  ScrollSteps _horizontal;
  StepQueue _queue;
};

}  // namespace tapdeck::x11
