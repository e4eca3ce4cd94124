#include "Platform/Linux/X11/Keyboard/ClientSync.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <thread>

#include "Platform/Linux/Support/Diagnostics.h"
#include "Platform/Linux/X11/ClientMessage.h"
#include "Platform/Linux/X11/Shutdown.h"
#include "Platform/Linux/X11/WindowManager.h"

namespace tapdeck::x11 {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

// How long an answer is awaited: from an application that is known to answer (a busy one may be
// that far behind), from one that did not answer the last time, and from one that may not know the
// question.
constexpr milliseconds kAnsweringTimeout{5000};
constexpr milliseconds kSilentTimeout{100};
constexpr milliseconds kUnknownTimeout{2000};
// for an application that does not know the question, in place of an answer
constexpr milliseconds kUnknownPause{300};
constexpr milliseconds kRefreshTimeout{500};
// for the application's main loop to run once
constexpr milliseconds kMainLoopPause{10};
constexpr milliseconds kShutdownCheckInterval{100};

}  // namespace

ClientSync::~ClientSync() {
  if (_selectionWindow != XCB_WINDOW_NONE) xcb_destroy_window(_connection.get(), _selectionWindow);
}

xcb_window_t ClientSync::noteFocus() {
  const auto focus =
      _connection.wait(xcb_get_input_focus(_connection.get()), xcb_get_input_focus_reply);
  if (focus == nullptr) return XCB_WINDOW_NONE;
  noteTypedInto(focus->focus);
  return focus->focus;
}

void ClientSync::waitForKeymapRefresh() {
  const xcb_window_t window = applicationWindow(noteFocus());
  if (window == XCB_WINDOW_NONE || isOwn(window) || !supportsPing(window)) return;
  if (_silent.contains(window)) return;
  // two answers, so that its main loop has run once in between
  const Deadline deadline = Clock::now() + kRefreshTimeout;
  for (int round = 0; round < 2 && ping(window, deadline); ++round) {
    std::this_thread::sleep_for(kMainLoopPause);
  }
}

void ClientSync::waitUntilRead() {
  noteFocus();
  const auto windows = std::move(_typedInto);
  _typedInto.clear();
  std::set<xcb_window_t> asked;
  for (const xcb_window_t window : windows) {
    const xcb_window_t application = applicationWindow(window);
    if (application == XCB_WINDOW_NONE || isOwn(application)) continue;
    if (asked.insert(application).second) waitUntilReadBy(application);
  }
}

void ClientSync::waitUntilReadBy(xcb_window_t window) {
  const bool isPinged = supportsPing(window);
  const bool wasSilent = _silent.contains(window);
  const bool knowsPing = isPinged || _answering.contains(window);
  const milliseconds longest = wasSilent   ? kSilentTimeout
                               : knowsPing ? kAnsweringTimeout
                                           : kUnknownTimeout;
  const Deadline deadline = Clock::now() + longest;
  if (isPinged ? ping(window, deadline) : pingByEditres(window, deadline)) {
    _silent.erase(window);
    _answering.insert(window);
    return;
  }
  _silent.insert(window);
  if (knowsPing && !wasSilent) {
    warn(
        "the application that is typed into does not answer; some of what is typed may get lost "
        "there.");
  } else if (!knowsPing) {
    std::this_thread::sleep_for(kUnknownPause);
  }
}

// Finds the top-level window, which bears WM_STATE: the focus may be on a child of it.
xcb_window_t ClientSync::applicationWindow(xcb_window_t focused) {
  const xcb_atom_t state = _connection.atom("WM_STATE");
  xcb_window_t window = focused;
  // XCB_INPUT_FOCUS_POINTER_ROOT and NONE are no windows
  while (window > XCB_INPUT_FOCUS_POINTER_ROOT && window != _connection.root()) {
    if (!_connection.property(window, state, state).empty()) return window;
    const auto tree =
        _connection.wait(xcb_query_tree(_connection.get(), window), xcb_query_tree_reply);
    if (tree == nullptr) return XCB_WINDOW_NONE;
    window = tree->parent;
  }
  return XCB_WINDOW_NONE;
}

// This process's own windows cannot answer: their thread may be the one that waits here.
bool ClientSync::isOwn(xcb_window_t window) {
  return processOf(_connection, window) == ::getpid();
}

bool ClientSync::supportsPing(xcb_window_t window) {
  return hasAnyAtom(_connection, window, "WM_PROTOCOLS", {"_NET_WM_PING"});
}

// The answer is sent to the root window, as if to a window manager. Qt 5 sends it with a mask that
// includes StructureNotify.
bool ClientSync::ping(xcb_window_t window, Deadline deadline) {
  const xcb_atom_t protocols = _connection.atom("WM_PROTOCOLS");
  const xcb_atom_t pingAtom = _connection.atom("_NET_WM_PING");
  const uint32_t number = ++_lastPing;
  const auto listen = [this](uint32_t mask) {
    xcb_change_window_attributes(_connection.get(), _connection.root(), XCB_CW_EVENT_MASK, &mask);
  };
  listen(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
  sendClientMessage(_connection, window, protocols, {pingAtom, number, window, 0, 0}, window,
                    XCB_EVENT_MASK_NO_EVENT);
  const bool answered = waitForEvent(
      [&](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) != XCB_CLIENT_MESSAGE) return false;
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        return message.type == protocols && message.data.data32[0] == pingAtom &&
               message.data.data32[1] == number;
      },
      deadline);
  listen(XCB_EVENT_MASK_NO_EVENT);
  xcb_flush(_connection.get());
  return answered;
}

// Programs on the X toolkit (xterm) answer the Editres protocol: they request the selection that
// its message names. That request is the answer; it is refused.
bool ClientSync::pingByEditres(xcb_window_t window, Deadline deadline) {
  constexpr uint32_t protocolVersion = 5;
  const xcb_atom_t selection = _connection.atom("TAPDECK_QUESTION");
  if (_selectionWindow == XCB_WINDOW_NONE) {
    _selectionWindow = xcb_generate_id(_connection.get());
    xcb_create_window(_connection.get(), XCB_COPY_FROM_PARENT, _selectionWindow, _connection.root(),
                      -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0,
                      nullptr);
  }
  xcb_set_selection_owner(_connection.get(), _selectionWindow, selection, XCB_CURRENT_TIME);
  sendClientMessage(_connection, window, _connection.atom("Editres"),
                    {XCB_CURRENT_TIME, selection, ++_lastPing & 0xff, protocolVersion, 0}, window,
                    XCB_EVENT_MASK_NO_EVENT);
  const bool answered = waitForEvent(
      [&](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) != XCB_SELECTION_REQUEST) return false;
        const auto& request = reinterpret_cast<const xcb_selection_request_event_t&>(event);
        xcb_selection_notify_event_t refusal{};
        refusal.response_type = XCB_SELECTION_NOTIFY;
        refusal.time = request.time;
        refusal.requestor = request.requestor;
        refusal.selection = request.selection;
        refusal.target = request.target;
        refusal.property = XCB_ATOM_NONE;
        xcb_send_event(_connection.get(), 0, request.requestor, 0,
                       reinterpret_cast<const char*>(&refusal));
        return request.selection == selection;
      },
      deadline);
  xcb_set_selection_owner(_connection.get(), XCB_WINDOW_NONE, selection, XCB_CURRENT_TIME);
  xcb_flush(_connection.get());
  return answered;
}

template <typename Matches>
bool ClientSync::waitForEvent(Matches matches, Deadline deadline) {
  xcb_flush(_connection.get());
  while (_connection.isAlive()) {
    while (const Received<xcb_generic_event_t> event{xcb_poll_for_event(_connection.get())}) {
      if (matches(*event)) return true;
    }
    const auto last = std::min(deadline, shutdownDeadline().value_or(deadline));
    const auto left = std::chrono::duration_cast<milliseconds>(last - Clock::now());
    if (left.count() <= 0) return false;
    pollfd readable = {xcb_get_file_descriptor(_connection.get()), POLLIN, 0};
    ::poll(&readable, 1, static_cast<int>(std::min(left, kShutdownCheckInterval).count()));
  }
  return false;
}

}  // namespace tapdeck::x11
