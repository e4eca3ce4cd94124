#include "Platform/Linux/X11/Input/KeyGrabs.h"

#include <xcb/xinput.h>

#include "Platform/Linux/X11/Keyboard/XkbProtocol.h"

namespace tapdeck::x11 {
namespace {

// X has no request that tells whether a key is grabbed, but only one client can grab it, so that a
// refused attempt shows another client's grab. The core protocol and the X Input extension each
// refuse only where there is a grab of their own kind.

bool hasCoreGrab(const Connection& connection, Keycode code, uint8_t modifiers) {
  const auto attempt = xcb_grab_key_checked(connection.get(), 0, connection.root(), modifiers, code,
                                            XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  xcb_ungrab_key(connection.get(), code, connection.root(), modifiers);
  const Received<xcb_generic_error_t> refused(xcb_request_check(connection.get(), attempt));
  return refused != nullptr && refused->error_code == XCB_ACCESS;
}

bool hasInputExtension(const Connection& connection) {
  const auto* extension = xcb_get_extension_data(connection.get(), &xcb_input_id);
  if (extension == nullptr || extension->present == 0) return false;
  const auto version = connection.wait(xcb_input_xi_query_version(connection.get(), 2, 0),
                                       xcb_input_xi_query_version_reply);
  return version != nullptr && version->major_version >= 2;
}

bool hasInputExtensionGrab(const Connection& connection, Keycode code, uint32_t modifiers) {
  if (!hasInputExtension(connection)) return false;
  constexpr uint32_t kNoEvents = 0;
  // all devices: some grab the master ones, some a single one
  const auto attempt = xcb_input_xi_passive_grab_device(
      connection.get(), XCB_CURRENT_TIME, connection.root(), XCB_NONE, code, XCB_INPUT_DEVICE_ALL,
      1, 1, XCB_INPUT_GRAB_TYPE_KEYCODE, XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_GRAB_MODE_ASYNC,
      XCB_INPUT_GRAB_OWNER_NO_OWNER, &kNoEvents, &modifiers);
  xcb_input_xi_passive_ungrab_device(connection.get(), connection.root(), code,
                                     XCB_INPUT_DEVICE_ALL, 1, XCB_INPUT_GRAB_TYPE_KEYCODE,
                                     &modifiers);
  // it lists the modifiers that were refused
  const auto reply = connection.wait(attempt, xcb_input_xi_passive_grab_device_reply);
  return reply != nullptr && reply->num_modifiers > 0;
}

}  // namespace

bool isKeyGrabbed(const Connection& connection, Keycode code) {
  const auto state = connection.wait(xcb_xkb_get_state(connection.get(), XCB_XKB_ID_USE_CORE_KBD),
                                     xcb_xkb_get_state_reply);
  if (state == nullptr) return false;
  return hasCoreGrab(connection, code, state->grabMods) ||
         hasInputExtensionGrab(connection, code, state->grabMods);
}

}  // namespace tapdeck::x11
