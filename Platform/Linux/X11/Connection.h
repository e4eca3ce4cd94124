#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace tapdeck::x11 {

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
/// The owner of a reply, an event or an error of the X server; they come from malloc.
template <typename Packet>
using Received = std::unique_ptr<Packet, Free>;

struct Disconnect {
  void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
/// The owner of what xcb_connect gives.
using OpenConnection = std::unique_ptr<xcb_connection_t, Disconnect>;

/// One connection to the X server of $DISPLAY. Requests on a connection that has broken are
/// dropped and their replies are null, so that nothing needs to check isAlive() first.
class Connection {
 public:
  /// Checks XTEST, XFIXES and RANDR 1.5 too. Throws WindowServerError.
  Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  xcb_connection_t* get() const { return _connection.get(); }
  /// The X screen of $DISPLAY; lives as long as this.
  const xcb_screen_t& screen() const { return *_screen; }
  xcb_window_t root() const { return _screen->root; }
  /// The number of the X screen: the Y of DISPLAY=:X.Y.
  int screenNumber() const { return _screenNumber; }
  bool isAlive() const { return xcb_connection_has_error(get()) == 0; }

  /// Sends what is buffered, and drops the events and errors that have come in. Whoever reads the
  /// connection's events calls xcb_flush instead.
  void flush() const;
  /// Waits until the server has carried out all that was sent (one round trip, like XSync). To be
  /// called before the connection ends, because the server then drops what it has not read.
  void sync() const;

  /// Waits for the reply of `request`; null when the server refused it or is gone.
  template <typename Cookie, typename Packet>
  Received<Packet> wait(Cookie request,
                        Packet* (*reply)(xcb_connection_t*, Cookie, xcb_generic_error_t**)) const {
    xcb_generic_error_t* error = nullptr;
    Received<Packet> packet(reply(get(), request, &error));
    const Received<xcb_generic_error_t> refused(error);
    return packet;
  }

  /// 0 (XCB_ATOM_NONE) when the server is gone.
  xcb_atom_t atom(const std::string& name);
  /// Empty when there is no such atom or the server is gone.
  const std::string& atomName(xcb_atom_t atom);
  /// A property's bytes, up to 256 KiB; empty when it is missing or of another type.
  std::vector<uint8_t> property(xcb_window_t window, xcb_atom_t name, xcb_atom_t type) const;

 private:
  void requireExtensions() const;

  int _screenNumber = 0;
  OpenConnection _connection;
  const xcb_screen_t* _screen = nullptr;
  // neither changes while the server runs
  std::unordered_map<std::string, xcb_atom_t> _atoms;
  std::unordered_map<xcb_atom_t, std::string> _atomNames;
};

}  // namespace tapdeck::x11
