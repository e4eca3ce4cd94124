#include "Platform/Linux/X11/Keyboard/KeyboardMonitor.h"

#include <xcb/xcbext.h>
#include <xcb/xtest.h>

#include <utility>

namespace tapdeck::x11 {
namespace {

bool useKeyboardExtension(const Connection& connection) {
  const auto reply =
      connection.wait(xcb_xkb_use_extension(connection.get(), 1, 0), xcb_xkb_use_extension_reply);
  return reply != nullptr && reply->supported != 0;
}

/// Of the reply to GetState and of XkbStateNotify, which name these fields alike.
template <typename Packet>
KeyboardState stateIn(const Packet& packet) {
  return {packet.group, packet.lockedGroup, packet.lockedMods};
}

/// A latch ends with the next key, so that a state with one must not be kept.
template <typename Packet>
bool hasLatch(const Packet& packet) {
  return packet.latchedGroup != 0 || packet.latchedMods != 0;
}

}  // namespace

KeyboardMonitor::KeyboardMonitor(Connection& output) : _output(output) {
  useKeyboardExtension(_output);
  useKeyboardExtension(_events);
  // like the output connection: served even while another client has grabbed the server
  xcb_test_grab_control(_events.get(), 1);
  const auto* extension = xcb_get_extension_data(_events.get(), &xcb_xkb_id);
  if (extension != nullptr) _firstEvent = extension->first_event;
  constexpr uint16_t mapEvents =
      XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
  // without base modifiers and pointer buttons, which change often and are not needed
  constexpr uint16_t stateParts = XCB_XKB_STATE_PART_MODIFIER_LATCH |
                                  XCB_XKB_STATE_PART_MODIFIER_LOCK |
                                  XCB_XKB_STATE_PART_GROUP_STATE | XCB_XKB_STATE_PART_GROUP_LATCH |
                                  XCB_XKB_STATE_PART_GROUP_LOCK;
  xcb_xkb_select_events_details_t details{};
  details.affectState = stateParts;
  details.stateDetails = stateParts;
  xcb_xkb_select_events_aux(_events.get(), XCB_XKB_ID_USE_CORE_KBD,
                            mapEvents | XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0, mapEvents, 0xff, 0xff,
                            &details);
  _events.sync();
}

bool KeyboardMonitor::takeMapChange() {
  readEvents();
  return std::exchange(_hasMapChanged, false);
}

KeyboardState KeyboardMonitor::state() {
  readEvents();
  if (_state) return *_state;
  const auto cookie = xcb_xkb_get_state(_output.get(), XCB_XKB_ID_USE_CORE_KBD);
  const auto reply = _output.wait(cookie, xcb_xkb_get_state_reply);
  if (reply == nullptr) return {};
  requestState();
  return stateIn(*reply);
}

void KeyboardMonitor::invalidateState() {
  _state.reset();
  if (_stateRequest) xcb_discard_reply(_events.get(), _stateRequest->sequence);
  _stateRequest.reset();
}

// To be called after a reply on `_output`: the server has then carried out all of our own changes,
// and the reply to this request and the events after it include them.
void KeyboardMonitor::requestState() {
  invalidateState();
  _stateSinceRequest.reset();
  _stateRequest = xcb_xkb_get_state(_events.get(), XCB_XKB_ID_USE_CORE_KBD);
  xcb_flush(_events.get());
}

void KeyboardMonitor::readEvents() {
  while (const Received<xcb_generic_event_t> event{xcb_poll_for_event(_events.get())}) {
    handle(*event);
  }
  if (!_stateRequest) return;
  void* answer = nullptr;
  xcb_generic_error_t* error = nullptr;
  if (xcb_poll_for_reply(_events.get(), _stateRequest->sequence, &answer, &error) == 0) return;
  _stateRequest.reset();
  const Received<xcb_generic_error_t> refused(error);
  const Received<xcb_xkb_get_state_reply_t> reply(static_cast<xcb_xkb_get_state_reply_t*>(answer));
  if (reply == nullptr) return;
  if (!_stateSinceRequest) _isLatched = hasLatch(*reply);
  if (!_isLatched) _state = _stateSinceRequest.value_or(stateIn(*reply));
}

void KeyboardMonitor::handle(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7f) != _firstEvent) return;
  // all events of the extension share one number; the kind is in the second byte
  if (event.pad0 == XCB_XKB_NEW_KEYBOARD_NOTIFY || event.pad0 == XCB_XKB_MAP_NOTIFY) {
    _hasMapChanged = true;
    invalidateState();
  } else if (event.pad0 == XCB_XKB_STATE_NOTIFY) {
    const auto& change = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event);
    // an event bears the sequence number of the last request that the server had processed
    const bool isSinceRequest = _stateRequest && event.full_sequence >= _stateRequest->sequence;
    if (!_state && !isSinceRequest) return;
    _isLatched = hasLatch(change);
    if (_stateRequest) {
      _stateSinceRequest = stateIn(change);
    } else if (_isLatched) {
      _state.reset();
    } else {
      _state = stateIn(change);
    }
  }
}

}  // namespace tapdeck::x11
