#include "Platform/Linux/X11/ServerState.h"

#include <glib-unix.h>
#include <xcb/randr.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace tapdeck::x11 {
namespace {

// One rearrangement takes the server and its clients several steps, and what they are at after the
// first of them is nothing to report.
constexpr guint kQuietMilliseconds = 40;

// the top bit of an event's type marks what a client has sent
constexpr uint8_t kEventTypeMask = 0x7f;

}  // namespace

ServerState::ServerState() {
  selectEvents();
  _readableSource =
      g_unix_fd_add(xcb_get_file_descriptor(_connection.get()), G_IO_IN, &onReadable, this);
}

ServerState::~ServerState() {
  if (_readableSource != 0) g_source_remove(_readableSource);
  if (_quietSource != 0) g_source_remove(_quietSource);
}

void ServerState::selectEvents() {
  // A monitor set or deleted by name causes no RandR event, only a ConfigureNotify of the root
  // window; a new owner of the settings sends its announcement there too. MappingNotify comes
  // without being selected.
  const uint32_t rootEvents = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(_connection.get(), _connection.root(), XCB_CW_EVENT_MASK,
                               &rootEvents);
  xcb_randr_select_input(_connection.get(), _connection.root(),
                         XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                             XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
  xcb_flush(_connection.get());
}

const std::vector<Monitor>& ServerState::monitors() {
  readEvents();
  if (!_monitors) {
    _monitors = queryMonitors(_connection);
    scheduleComparison();
  }
  return *_monitors;
}

// GTK's own rule, so that the points of the host's windows are the points of the host's displays.
double ServerState::pixelsPerPoint() {
  if (const char* forced = std::getenv("GDK_SCALE")) return std::max(1, std::atoi(forced));
  return std::max(1, setting("Gdk/WindowScalingFactor").value_or(1));
}

std::optional<int32_t> ServerState::setting(std::string_view name) {
  const auto& all = settings();
  const auto found = all.find(name);
  return found != all.end() ? std::optional(found->second) : std::nullopt;
}

const IntegerSettings& ServerState::settings() {
  readEvents();
  if (_settings) return *_settings;
  const xcb_window_t owner = settingsOwner(_connection);
  if (owner != XCB_WINDOW_NONE) {
    // before the property is read: a change in between is then read twice rather than never
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(_connection.get(), owner, XCB_CW_EVENT_MASK, &events);
  }
  _settings = querySettings(_connection, owner);
  scheduleComparison();
  return *_settings;
}

const std::vector<uint8_t>& ServerState::buttonMapping() {
  readEvents();
  if (_buttonMapping) return *_buttonMapping;
  const auto reply =
      _connection.wait(xcb_get_pointer_mapping(_connection.get()), xcb_get_pointer_mapping_reply);
  _buttonMapping.emplace();
  if (reply != nullptr) {
    const uint8_t* first = xcb_get_pointer_mapping_map(reply.get());
    _buttonMapping->assign(first, first + xcb_get_pointer_mapping_map_length(reply.get()));
  }
  return *_buttonMapping;
}

std::optional<uint8_t> ServerState::physicalButton(uint8_t button) {
  const auto& mapping = buttonMapping();
  const auto place = std::find(mapping.begin(), mapping.end(), button);
  if (place == mapping.end()) return std::nullopt;
  return static_cast<uint8_t>(place - mapping.begin() + 1);
}

void ServerState::observe(std::function<void()> changed) {
  _lastReported = displays();
  _observers.push_back(std::move(changed));
}

void ServerState::readEvents() {
  while (const auto event = Received<xcb_generic_event_t>(xcb_poll_for_event(_connection.get()))) {
    handle(*event);
    scheduleComparison();
  }
  if (!_connection.isAlive()) {
    _monitors.emplace();
    _settings.emplace();
    _buttonMapping.emplace();
  }
}

void ServerState::handle(const xcb_generic_event_t& event) {
  if ((event.response_type & kEventTypeMask) == XCB_MAPPING_NOTIFY) {
    const auto& mapping = reinterpret_cast<const xcb_mapping_notify_event_t&>(event);
    if (mapping.request == XCB_MAPPING_POINTER) _buttonMapping.reset();
    return;
  }
  _monitors.reset();
  _settings.reset();
}

// An event that came in together with a reply is queued and makes nothing readable, so this is
// called after each query too.
void ServerState::scheduleComparison() {
  if (_quietSource == 0) _quietSource = g_timeout_add(kQuietMilliseconds, &onQuiet, this);
}

void ServerState::compare() {
  Displays now = displays();
  if (!_connection.isAlive() || now == _lastReported) return;
  _lastReported = std::move(now);
  const auto observers = _observers;
  for (const auto& changed : observers) changed();
}

gboolean ServerState::onReadable(int, GIOCondition, gpointer self) noexcept {
  auto& state = *static_cast<ServerState*>(self);
  state.readEvents();
  if (state._connection.isAlive()) return G_SOURCE_CONTINUE;
  state._readableSource = 0;
  return G_SOURCE_REMOVE;
}

gboolean ServerState::onQuiet(gpointer self) noexcept {
  auto& state = *static_cast<ServerState*>(self);
  state._quietSource = 0;
  state.compare();
  return G_SOURCE_REMOVE;
}

}  // namespace tapdeck::x11
