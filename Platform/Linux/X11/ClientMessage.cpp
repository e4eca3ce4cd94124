#include "Platform/Linux/X11/ClientMessage.h"

#include <algorithm>

namespace tapdeck::x11 {

void sendClientMessage(const Connection& connection, xcb_window_t window, xcb_atom_t type,
                       const std::array<uint32_t, 5>& data, xcb_window_t destination,
                       uint32_t mask) {
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window;
  message.type = type;
  std::copy(data.begin(), data.end(), message.data.data32);
  xcb_send_event(connection.get(), 0, destination, mask, reinterpret_cast<const char*>(&message));
}

}  // namespace tapdeck::x11
