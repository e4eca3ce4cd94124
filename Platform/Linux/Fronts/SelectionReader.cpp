#include "Platform/Linux/Fronts/SelectionReader.h"

#include <glib.h>
#include <poll.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <string_view>

#include "Platform/Linux/Support/GLibOwners.h"
#include "Platform/Linux/X11/Connection.h"

namespace tapdeck::platform {

namespace {

using Clock = std::chrono::steady_clock;

/// Beyond the longest text by as much as shows that there is more, in whole words.
constexpr std::size_t kMaxRead = kMaxSelectionText + 4;

using x11::Received;

/// A property's bytes as they came.
struct Property {
  xcb_atom_t type = XCB_ATOM_NONE;
  std::string bytes;
};

/// The next NUL-free stretch of `text`, made valid UTF-8.
std::string validStretch(std::string_view stretch) {
  const glib::Text valid(g_utf8_make_valid(stretch.data(), static_cast<gssize>(stretch.size())));
  return valid.get();
}

/// Some owners count the final NUL of their C string in; those within the text are the text's own.
std::string cleanUtf8(std::string_view bytes) {
  while (bytes.ends_with('\0')) bytes.remove_suffix(1);
  std::string text;
  for (;;) {
    const auto end = bytes.find('\0');
    text += validStretch(bytes.substr(0, end));
    if (end == std::string_view::npos) return text;
    text += '\0';
    bytes.remove_prefix(end + 1);
  }
}

std::string utf8FromLatin1(std::string_view bytes) {
  while (bytes.ends_with('\0')) bytes.remove_suffix(1);
  std::string text;
  text.reserve(bytes.size());
  for (const char character : bytes) {
    const auto code = static_cast<unsigned char>(character);
    if (code < 0x80) {
      text += character;
    } else {
      text += static_cast<char>(0xC0 | (code >> 6));
      text += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  return text;
}

/// One reading, from the connection's opening to its end.
class SelectionReader {
 public:
  SelectionReader(const std::string& display, const std::string& selection,
                  const SelectionTimeouts& timeouts)
      : _connection(xcb_connect(display.c_str(), nullptr)),
        _silence(timeouts.silence),
        _end(Clock::now() + timeouts.total) {
    if (!isConnected()) return;
    _selection = atom(selection);
    _property = atom("TAPDECK_SELECTION");
    _incremental = atom("INCR");
    _utf8 = atom("UTF8_STRING");
    _text = atom("TEXT");
    createWindow();
  }

  std::optional<std::string> read() {
    if (!isConnected() || !watchOwner()) return std::nullopt;
    _time = serverTime();
    for (const xcb_atom_t target : {_utf8, xcb_atom_t{XCB_ATOM_STRING}, _text}) {
      const auto property = convert(target);
      if (_gaveUp) return std::nullopt;
      if (!property) continue;
      if (property->type == _utf8) return cleanUtf8(property->bytes);
      if (property->type == XCB_ATOM_STRING) return utf8FromLatin1(property->bytes);
    }
    return std::nullopt;
  }

 private:
  bool isConnected() const { return xcb_connection_has_error(_connection.get()) == 0; }

  xcb_atom_t atom(std::string_view name) {
    const auto request =
        xcb_intern_atom(_connection.get(), 0, static_cast<uint16_t>(name.size()), name.data());
    const Received<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(_connection.get(), request, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  }

  void createWindow() {
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(_connection.get())).data;
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    _window = xcb_generate_id(_connection.get());
    xcb_create_window(_connection.get(), 0, _window, screen->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &events);
  }

  /// Selects the events of the owner's end. False when there is no owner.
  bool watchOwner() {
    const Received<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        _connection.get(), xcb_get_selection_owner(_connection.get(), _selection), nullptr));
    if (!reply || reply->owner == XCB_WINDOW_NONE) return false;
    _owner = reply->owner;
    const uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    const auto request =
        xcb_change_window_attributes_checked(_connection.get(), _owner, XCB_CW_EVENT_MASK, &events);
    const Received<xcb_generic_error_t> gone(xcb_request_check(_connection.get(), request));
    return !gone;
  }

  /// ICCCM wants the time of an event in a request for a selection, so this provokes one.
  xcb_timestamp_t serverTime() {
    xcb_change_property(_connection.get(), XCB_PROP_MODE_APPEND, _window, _property,
                        XCB_ATOM_STRING, 8, 0, "");
    const auto event = awaitProperty(XCB_PROPERTY_NEW_VALUE);
    return event ? event->time : xcb_timestamp_t{XCB_CURRENT_TIME};
  }

  /// The selection as `target`; absent when the owner has no such form or is given up on.
  std::optional<Property> convert(xcb_atom_t target) {
    xcb_delete_property(_connection.get(), _window, _property);
    xcb_convert_selection(_connection.get(), _window, _selection, target, _property, _time);
    const auto answer = await<xcb_selection_notify_event_t>(
        XCB_SELECTION_NOTIFY, [&](const xcb_selection_notify_event_t& event) {
          return event.selection == _selection && event.target == target;
        });
    if (!answer || answer->property == XCB_ATOM_NONE) return std::nullopt;
    auto property = takeProperty();
    if (property && property->type == _incremental) return takeIncrements();
    return property;
  }

  /// Deleting the property tells the owner to send the next part (INCR); an empty one is the last.
  std::optional<Property> takeIncrements() {
    Property whole;
    for (;;) {
      if (!awaitProperty(XCB_PROPERTY_NEW_VALUE)) return std::nullopt;
      const auto part = takeProperty();
      if (!part) continue;  // The event of a value that was taken already.
      whole.type = part->type;
      if (part->bytes.empty()) return whole;
      whole.bytes += part->bytes;
      if (whole.bytes.size() > kMaxSelectionText) return whole;
    }
  }

  /// Reads the property and deletes it; absent when it is not set.
  std::optional<Property> takeProperty() {
    constexpr uint32_t kMaxWords = kMaxRead / 4;
    const auto request = xcb_get_property(_connection.get(), 1, _window, _property,
                                          XCB_GET_PROPERTY_TYPE_ANY, 0, kMaxWords);
    const Received<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(_connection.get(), request, nullptr));
    if (!reply || reply->type == XCB_ATOM_NONE) return std::nullopt;
    const auto* bytes = static_cast<const char*>(xcb_get_property_value(reply.get()));
    return Property{
        reply->type,
        std::string(bytes, static_cast<std::size_t>(xcb_get_property_value_length(reply.get())))};
  }

  Received<xcb_property_notify_event_t> awaitProperty(xcb_property_t state) {
    return await<xcb_property_notify_event_t>(
        XCB_PROPERTY_NOTIFY, [&](const xcb_property_notify_event_t& event) {
          return event.atom == _property && event.state == state;
        });
  }

  /// The next event of this kind that fits; null, and the reading given up, when it does not come
  /// in time or the owner dies.
  template <typename Event, typename Fits>
  Received<Event> await(uint8_t kind, Fits fits) {
    const auto end = std::min(Clock::now() + _silence, _end);
    while (isConnected() && Clock::now() < end) {
      Received<xcb_generic_event_t> event(xcb_poll_for_event(_connection.get()));
      if (!event) {
        waitUntil(end);
        continue;
      }
      const uint8_t type = event->response_type & 0x7F;
      if (type == kind && fits(*reinterpret_cast<Event*>(event.get()))) {
        return Received<Event>(reinterpret_cast<Event*>(event.release()));
      }
      if (type == XCB_DESTROY_NOTIFY) break;
    }
    giveUp();
    return nullptr;
  }

  void waitUntil(Clock::time_point end) {
    xcb_flush(_connection.get());
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
    pollfd socket{xcb_get_file_descriptor(_connection.get()), POLLIN, 0};
    poll(&socket, 1, std::max(0, static_cast<int>(left.count())));
  }

  std::nullopt_t giveUp() {
    _gaveUp = true;
    return std::nullopt;
  }

  x11::OpenConnection _connection;
  std::chrono::milliseconds _silence;
  Clock::time_point _end;
  bool _gaveUp = false;
  xcb_atom_t _selection = XCB_ATOM_NONE;
  xcb_atom_t _property = XCB_ATOM_NONE;
  xcb_atom_t _incremental = XCB_ATOM_NONE;
  xcb_atom_t _utf8 = XCB_ATOM_NONE;
  xcb_atom_t _text = XCB_ATOM_NONE;
  xcb_window_t _window = XCB_WINDOW_NONE;
  xcb_window_t _owner = XCB_WINDOW_NONE;
  xcb_timestamp_t _time = XCB_CURRENT_TIME;
};

}  // namespace

std::optional<std::string> readSelection(const std::string& display, const std::string& selection,
                                         const SelectionTimeouts& timeouts) {
  return SelectionReader(display, selection, timeouts).read();
}

}  // namespace tapdeck::platform
