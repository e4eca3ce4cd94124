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

/// The next key ends a latch, without anybody being asked.
template <typename Packet>
bool hasLatch(const Packet& packet) {
  return packet.latchedGroup != 0 || packet.latchedMods != 0;
}

}  // namespace

KeyboardMonitor::KeyboardMonitor(Connection& output) : _output(output) {
  useKeyboardExtension(_output);
  useKeyboardExtension(_events);
  // as the output: not to be held up by who grabs the whole server
  xcb_test_grab_control(_events.get(), 1);
  const auto* extension = xcb_get_extension_data(_events.get(), &xcb_xkb_id);
  if (extension != nullptr) _firstEvent = extension->first_event;
  constexpr uint16_t mapEvents =
      XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
  // held modifiers and pointer buttons are of no account, and change all the time
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
  _events.finish();
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
  askAgain();
  return stateIn(*reply);
}

void KeyboardMonitor::stateIsChanged() {
  _state.reset();
  if (_question) xcb_discard_reply(_events.get(), _question->sequence);
  _question.reset();
}

// All of our own changes have been carried out, since `_output` was answered: what this brings, and
// the events behind it, know of them.
void KeyboardMonitor::askAgain() {
  stateIsChanged();
  _sinceQuestion.reset();
  _question = xcb_xkb_get_state(_events.get(), XCB_XKB_ID_USE_CORE_KBD);
  xcb_flush(_events.get());
}

void KeyboardMonitor::readEvents() {
  while (const Received<xcb_generic_event_t> event{xcb_poll_for_event(_events.get())}) note(*event);
  if (!_question) return;
  void* answer = nullptr;
  xcb_generic_error_t* error = nullptr;
  if (xcb_poll_for_reply(_events.get(), _question->sequence, &answer, &error) == 0) return;
  _question.reset();
  const Received<xcb_generic_error_t> refused(error);
  const Received<xcb_xkb_get_state_reply_t> reply(static_cast<xcb_xkb_get_state_reply_t*>(answer));
  if (reply == nullptr) return;
  if (!_sinceQuestion) _isLatched = hasLatch(*reply);
  if (!_isLatched) _state = _sinceQuestion.value_or(stateIn(*reply));
}

void KeyboardMonitor::note(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7f) != _firstEvent) return;
  // all events of the extension share one number; the kind is in the second byte
  if (event.pad0 == XCB_XKB_NEW_KEYBOARD_NOTIFY || event.pad0 == XCB_XKB_MAP_NOTIFY) {
    _hasMapChanged = true;
    stateIsChanged();
  } else if (event.pad0 == XCB_XKB_STATE_NOTIFY) {
    const auto& change = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event);
    // an event bears the number of the last request that the server had read then
    const bool isBehindQuestion = _question && event.full_sequence >= _question->sequence;
    if (!_state && !isBehindQuestion) return;
    _isLatched = hasLatch(change);
    if (_question) {
      _sinceQuestion = stateIn(change);
    } else if (_isLatched) {
      _state.reset();
    } else {
      _state = stateIn(change);
    }
  }
}

}  // namespace tapdeck::x11
