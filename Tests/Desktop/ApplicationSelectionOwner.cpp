#include "Tests/Desktop/ApplicationSelectionOwner.h"

#include <poll.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <utility>

namespace tapdeck::testing {

namespace {

struct Freeing {
  void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using Owned = std::unique_ptr<T, Freeing>;

xcb_atom_t atomOf(xcb_connection_t* connection, const std::string& name) {
  const auto request =
      xcb_intern_atom(connection, 0, static_cast<uint16_t>(name.size()), name.data());
  const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, request, nullptr));
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

xcb_window_t ownerOf(xcb_connection_t* connection, xcb_atom_t selection) {
  const Owned<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
      connection, xcb_get_selection_owner(connection, selection), nullptr));
  return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

}  // namespace

xcb_window_t selectionOwner(const std::string& selection) {
  const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(
      xcb_connect(nullptr, nullptr), xcb_disconnect);
  return ownerOf(connection.get(), atomOf(connection.get(), selection));
}

SelectionOwner::SelectionOwner(const std::string& selection, Answer answer)
    : _answer(std::move(answer)), _connection(xcb_connect(nullptr, nullptr)) {
  if (xcb_connection_has_error(_connection) != 0) throw std::runtime_error("no X server");
  _window = xcb_generate_id(_connection);
  xcb_create_window(_connection, 0, _window,
                    xcb_setup_roots_iterator(xcb_get_setup(_connection)).data->root, 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
  const xcb_atom_t name = atomOf(_connection, selection);
  xcb_set_selection_owner(_connection, _window, name, XCB_CURRENT_TIME);
  if (ownerOf(_connection, name) != _window) throw std::runtime_error("cannot own the selection");
  _thread = std::thread([this] { serve(); });
}

SelectionOwner::~SelectionOwner() {
  _ended = true;
  _thread.join();
  xcb_disconnect(_connection);
}

void SelectionOwner::serve() {
  while (!_ended && xcb_connection_has_error(_connection) == 0) {
    const Owned<xcb_generic_event_t> event(xcb_poll_for_event(_connection));
    if (event && (event->response_type & 0x7F) == XCB_SELECTION_REQUEST) {
      answer(*reinterpret_cast<xcb_selection_request_event_t*>(event.get()));
    } else if (!event) {
      pollfd socket{xcb_get_file_descriptor(_connection), POLLIN, 0};
      poll(&socket, 1, 10);
    }
  }
}

void SelectionOwner::answer(const xcb_selection_request_event_t& request) {
  const auto form = _answer(nameOf(request.target));
  if (form && form->type == kSilentType) return;
  xcb_selection_notify_event_t notify{};
  notify.response_type = XCB_SELECTION_NOTIFY;
  notify.time = request.time;
  notify.requestor = request.requestor;
  notify.selection = request.selection;
  notify.target = request.target;
  if (form) {
    notify.property = request.property;
    xcb_change_property(_connection, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                        atomOf(_connection, form->type), 8,
                        static_cast<uint32_t>(form->bytes.size()), form->bytes.data());
  }
  xcb_send_event(_connection, 0, request.requestor, 0, reinterpret_cast<const char*>(&notify));
  if (form && form->type == kDeadlyType) xcb_destroy_window(_connection, _window);
  xcb_flush(_connection);
}

std::string SelectionOwner::nameOf(xcb_atom_t atom) {
  const Owned<xcb_get_atom_name_reply_t> reply(
      xcb_get_atom_name_reply(_connection, xcb_get_atom_name(_connection, atom), nullptr));
  if (!reply) return {};
  return {xcb_get_atom_name_name(reply.get()),
          static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

}  // namespace tapdeck::testing
