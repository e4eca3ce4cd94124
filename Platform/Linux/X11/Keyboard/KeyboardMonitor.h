#pragma once

#include <cstdint>
#include <optional>

#include "Platform/Linux/X11/Connection.h"
#include "Platform/Linux/X11/Keyboard/XkbProtocol.h"

namespace tapdeck::x11 {

/// The part of the XKB state that keys are chosen by.
struct KeyboardState {
  /// The effective group; what of it is not locked is held or latched.
  uint8_t group = 0;
  uint8_t lockedGroup = 0;
  /// Real modifiers.
  uint8_t lockedModifiers = 0;
};

/// Follows the core keyboard's map and state by events (XkbMapNotify, XkbNewKeyboardNotify,
/// XkbStateNotify) on a connection of its own. One thread at a time.
class KeyboardMonitor {
 public:
  /// Keys, and what else changes the keyboard's state, are sent on `output`.
  explicit KeyboardMonitor(Connection& output);
  KeyboardMonitor(const KeyboardMonitor&) = delete;
  KeyboardMonitor& operator=(const KeyboardMonitor&) = delete;

  /// The connection that the events come on; nobody else may read them.
  Connection& connection() { return _events; }

  /// Whether the map has changed since this was asked last, as far as events have come in. No round
  /// trip.
  bool takeMapChange();

  /// The state after all that was sent on `output`. A round trip only after `stateIsChanged`, after
  /// a change of the map, or while something is latched.
  KeyboardState state();
  /// To be called whenever something sent on `output` changes the state: the events about it may
  /// arrive after the next key is due.
  void stateIsChanged();

 private:
  void readEvents();
  void note(const xcb_generic_event_t& event);
  void askAgain();

  Connection& _output;
  Connection _events;
  uint8_t _firstEvent = 0;
  bool _hasMapChanged = false;
  /// Absent while events about changes of our own may be on their way.
  std::optional<KeyboardState> _state;
  /// GetState on the events' own connection: its reply and the events after it are in order.
  std::optional<xcb_xkb_get_state_cookie_t> _question;
  /// The last event that the server sent after that reply.
  std::optional<KeyboardState> _sinceQuestion;
  bool _isLatched = false;
};

}  // namespace tapdeck::x11
