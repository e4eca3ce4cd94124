#pragma once

#include <chrono>
#include <set>

#include "Platform/Linux/X11/Connection.h"

namespace tapdeck::x11 {

/// Waits, by a question that an application answers (_NET_WM_PING, Editres), until applications
/// have read what they were sent before. An application that does not answer holds nothing up for
/// long. One thread at a time.
class ClientSync {
 public:
  /// `connection` is read here; nobody else may want its client messages.
  explicit ClientSync(Connection& connection) : _connection(connection) {}
  ~ClientSync();
  ClientSync(const ClientSync&) = delete;
  ClientSync& operator=(const ClientSync&) = delete;

  /// Keys are sent to the application of this window, which has the focus.
  void noteTypedInto(xcb_window_t focused) { _typedInto.insert(focused); }
  /// Waits until every application that was noted has read all that was sent to it so far.
  void waitUntilRead();
  /// Waits, half a second at most, until the application with the focus has had time to read a
  /// changed keymap. The events of one connection are in order, but some programs read the keymap
  /// on a second connection.
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
  /// Windows that have ever answered, and those that did not the last time.
  std::set<xcb_window_t> _answering;
  std::set<xcb_window_t> _silent;
  xcb_window_t _own = XCB_WINDOW_NONE;
  uint32_t _number = 0;
};

}  // namespace tapdeck::x11
