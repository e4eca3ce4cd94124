#pragma once

#include <chrono>
#include <set>

#include "Platform/Linux/X11/Connection.h"

namespace tapdeck::x11 {

/// Waits until applications have read the events that were sent to them: it sends a message that
/// an application answers (_NET_WM_PING, or Editres), and the answer comes after those events. All
/// waits are bounded. One thread at a time.
class ClientSync {
 public:
  /// Reads the events of `connection`; nobody else may.
  explicit ClientSync(Connection& connection) : _connection(connection) {}
  ~ClientSync();
  ClientSync(const ClientSync&) = delete;
  ClientSync& operator=(const ClientSync&) = delete;

  /// To be called for the window that has the focus when keys are sent.
  void noteTypedInto(xcb_window_t focused) { _typedInto.insert(focused); }
  /// Waits until the applications of the noted windows, and of the one that has the focus now, have
  /// read all that was sent to them so far. The notes end.
  void waitUntilRead();
  /// Gives the application that has the focus time to read a changed keymap: half a second at most.
  /// An answer alone does not show that it has, because some programs read the keymap on a second
  /// connection.
  void waitForKeymapRefresh();

 private:
  using Deadline = std::chrono::steady_clock::time_point;
  void waitUntilReadBy(xcb_window_t window);
  xcb_window_t noteFocus();
  xcb_window_t applicationWindow(xcb_window_t focused);
  bool isOwn(xcb_window_t window);
  bool supportsPing(xcb_window_t window);
  bool ping(xcb_window_t window, Deadline deadline);
  bool pingByEditres(xcb_window_t window, Deadline deadline);
  template <typename Matches>
  bool waitForEvent(Matches matches, Deadline deadline);

  Connection& _connection;
  std::set<xcb_window_t> _typedInto;
  /// Windows that have answered at least once, and those that did not answer the last time.
  std::set<xcb_window_t> _answering;
  std::set<xcb_window_t> _silent;
  /// Owns the selection of an Editres message.
  xcb_window_t _selectionWindow = XCB_WINDOW_NONE;
  /// The number that the last message bore.
  uint32_t _lastPing = 0;
};

}  // namespace tapdeck::x11
