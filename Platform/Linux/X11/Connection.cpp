#include "Platform/Linux/X11/Connection.h"

#include <xcb/randr.h>
#include <xcb/xfixes.h>
#include <xcb/xtest.h>

#include "Platform/Linux/X11/WindowServerError.h"

namespace tapdeck::x11 {
namespace {

std::string displayName() {
  const char* name = std::getenv("DISPLAY");
  if (name == nullptr || *name == '\0') {
    throw WindowServerError(
        "there is no X display: the environment variable DISPLAY is not set. Start Tapdeck inside "
        "a desktop session, or set DISPLAY to the X server that it shall control, such as "
        "DISPLAY=:0.");
  }
  return name;
}

[[noreturn]] void throwCannotOpen(const std::string& display, int reason) {
  if (reason == XCB_CONN_CLOSED_PARSE_ERR) {
    throw WindowServerError("DISPLAY=" + display +
                            " is not the name of an X display. Set it to one such as :0.");
  }
  if (reason == XCB_CONN_CLOSED_INVALID_SCREEN) {
    throw WindowServerError("the X server of DISPLAY=" + display +
                            " has no such screen. Leave out what follows the dot.");
  }
  throw WindowServerError("cannot open the X display " + display +
                          ". Check that its X server is running and lets this user in "
                          "(XAUTHORITY, or xhost on that display).");
}

[[noreturn]] void throwMissing(const std::string& extension, const std::string& use) {
  throw WindowServerError("the X server of DISPLAY=" + displayName() + " has no " + extension +
                          ", which Tapdeck needs to " + use +
                          ". Use an X server that has it (Xorg and Xvfb do) and that is not "
                          "started with this extension switched off.");
}

bool isPresent(xcb_connection_t* connection, xcb_extension_t& extension) {
  const auto* data = xcb_get_extension_data(connection, &extension);
  return data != nullptr && data->present != 0;
}

}  // namespace

Connection::Connection() {
  const std::string display = displayName();
  _connection.reset(xcb_connect(display.c_str(), &_screenNumber));
  if (const int reason = xcb_connection_has_error(get()); reason != 0) {
    throwCannotOpen(display, reason);
  }
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(get()));
  for (int i = 0; i < _screenNumber; ++i) xcb_screen_next(&screens);
  _screen = screens.data;
  requireExtensions();
}

void Connection::requireExtensions() const {
  if (!isPresent(get(), xcb_test_id)) throwMissing("XTEST extension", "move the pointer");
  if (!isPresent(get(), xcb_xfixes_id)) throwMissing("XFIXES extension", "hide the cursor");
  const auto fixes = wait(xcb_xfixes_query_version(get(), 5, 0), xcb_xfixes_query_version_reply);
  if (fixes == nullptr || fixes->major_version < 4) {
    throwMissing("XFIXES extension of version 4", "hide the cursor");
  }
  const std::string monitors = "RANDR extension of version 1.5";
  if (!isPresent(get(), xcb_randr_id)) throwMissing(monitors, "find the displays");
  const auto randr = wait(xcb_randr_query_version(get(), 1, 5), xcb_randr_query_version_reply);
  if (randr == nullptr || randr->major_version != 1 || randr->minor_version < 5) {
    throwMissing(monitors, "find the displays");
  }
}

void Connection::flush() const {
  xcb_flush(get());
  while (Received<xcb_generic_event_t>(xcb_poll_for_event(get())) != nullptr) {
  }
}

void Connection::sync() const {
  wait(xcb_get_input_focus(get()), xcb_get_input_focus_reply);
}

xcb_atom_t Connection::atom(const std::string& name) {
  if (const auto found = _atoms.find(name); found != _atoms.end()) return found->second;
  const auto reply =
      wait(xcb_intern_atom(get(), 0, static_cast<uint16_t>(name.size()), name.data()),
           xcb_intern_atom_reply);
  if (reply == nullptr) return XCB_ATOM_NONE;
  return _atoms[name] = reply->atom;
}

const std::string& Connection::atomName(xcb_atom_t atom) {
  static const std::string none;
  if (const auto found = _atomNames.find(atom); found != _atomNames.end()) return found->second;
  const auto reply = wait(xcb_get_atom_name(get(), atom), xcb_get_atom_name_reply);
  if (reply == nullptr) return none;
  const auto length = static_cast<size_t>(xcb_get_atom_name_name_length(reply.get()));
  return _atomNames[atom] = std::string(xcb_get_atom_name_name(reply.get()), length);
}

std::vector<uint8_t> Connection::property(xcb_window_t window, xcb_atom_t name,
                                          xcb_atom_t type) const {
  constexpr uint32_t kMaxWords = 64 * 1024;  // of four bytes
  const auto reply =
      wait(xcb_get_property(get(), 0, window, name, type, 0, kMaxWords), xcb_get_property_reply);
  if (reply == nullptr || reply->type != type) return {};
  const auto* bytes = static_cast<const uint8_t*>(xcb_get_property_value(reply.get()));
  return {bytes, bytes + xcb_get_property_value_length(reply.get())};
}

}  // namespace tapdeck::x11
