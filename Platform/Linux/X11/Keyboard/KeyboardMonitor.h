#pragma once

#include <cstdint>
#include <optional>

#include "Platform/Linux/X11/Connection.h"
#include "Platform/Linux/X11/Keyboard/XkbProtocol.h"

namespace tapdeck::x11 {

/// The part of the XKB state that keys are chosen by.
struct KeyboardState {
  /// The effective group: the locked one with the base group (held keys) and the latched one added.
  uint8_t group = 0;
  uint8_t lockedGroup = 0;
  /// Real modifiers.
  uint8_t lockedModifiers = 0;
};

/// Follows the core keyboard's map and state by events (XkbMapNotify, XkbNewKeyboardNotify,
/// XkbStateNotify) on a connection of its own. One thread at a time.
class KeyboardMonitor {
 public:
  /// `output` is the connection on which this process changes the keyboard's state.
  explicit KeyboardMonitor(Connection& output);
  KeyboardMonitor(const KeyboardMonitor&) = delete;
  KeyboardMonitor& operator=(const KeyboardMonitor&) = delete;

  /// The connection that the events come on; nobody else may read them.
  Connection& connection() { return _events; }

  /// Whether the map has changed since the last call, by the events that have arrived. No round
  /// trip.
  bool takeMapChange();

  /// The state after all that was sent on `output`. It takes a round trip only after
  /// `invalidateState`, after a change of the map, and while something is latched.
  KeyboardState state();
  /// To be called whenever something that changes the state is sent on `output`: the events about
  /// it may arrive too late for the next key.
  void invalidateState();

 private:
  void readEvents();
  void handle(const xcb_generic_event_t& event);
  void requestState();

  Connection& _output;
  Connection _events;
  uint8_t _firstEvent = 0;
  bool _hasMapChanged = false;
  /// Absent while events about changes by this process may still arrive.
  std::optional<KeyboardState> _state;
  /// A pending GetState on the connection of the events, so that its reply and they are in order.
  std::optional<xcb_xkb_get_state_cookie_t> _stateRequest;
  /// By the last event that the server sent after that reply.
  std::optional<KeyboardState> _stateSinceRequest;
  bool _isLatched = false;
};

}  // namespace tapdeck::x11
