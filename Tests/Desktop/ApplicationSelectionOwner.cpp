#include "Tests/Desktop/ApplicationSelectionOwner.h"

#include <poll.h>

#include <stdexcept>
#include <utility>

namespace tapdeck::testing {

SelectionOwner::SelectionOwner(const std::string& selection, Answer answer)
    : _answer(std::move(answer)), _window(_client.createHiddenWindow()) {
  xcb_set_selection_owner(_client.get(), _window, _client.atom(selection), XCB_CURRENT_TIME);
  if (_client.selectionOwner(selection) != _window) throw std::runtime_error("not the owner");
  _thread = std::thread([this] { serve(); });
}

SelectionOwner::~SelectionOwner() {
  _ended = true;
  _thread.join();
}

void SelectionOwner::serve() {
  while (!_ended && xcb_connection_has_error(_client.get()) == 0) {
    const auto event = Observer::owned(xcb_poll_for_event(_client.get()));
    if (event && (event->response_type & 0x7F) == XCB_SELECTION_REQUEST) {
      answer(*reinterpret_cast<xcb_selection_request_event_t*>(event.get()));
    } else if (!event) {
      pollfd socket{xcb_get_file_descriptor(_client.get()), POLLIN, 0};
      poll(&socket, 1, 10);
    }
  }
}

void SelectionOwner::answer(const xcb_selection_request_event_t& request) {
  const auto form = _answer(_client.nameOf(request.target));
  if (form && form->type == kSilentType) return;
  xcb_selection_notify_event_t notify{};
  notify.response_type = XCB_SELECTION_NOTIFY;
  notify.time = request.time;
  notify.requestor = request.requestor;
  notify.selection = request.selection;
  notify.target = request.target;
  if (form) {
    notify.property = request.property;
    xcb_change_property(_client.get(), XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                        _client.atom(form->type), 8, static_cast<uint32_t>(form->bytes.size()),
                        form->bytes.data());
  }
  xcb_send_event(_client.get(), 0, request.requestor, 0, reinterpret_cast<const char*>(&notify));
  if (form && form->type == kDeadlyType) xcb_destroy_window(_client.get(), _window);
  xcb_flush(_client.get());
}

}  // namespace tapdeck::testing
