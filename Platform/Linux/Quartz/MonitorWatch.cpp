#include "Platform/Linux/Quartz/MonitorWatch.h"

#include <glib-unix.h>
#include <xcb/randr.h>

#include <utility>

#include "Platform/Linux/Quartz/XSettings.h"

namespace tapdeck::quartz {
namespace {

// One rearrangement takes the server and its clients several steps; who is told of the first of
// them sees a desktop that never was meant.
constexpr guint kQuietMilliseconds = 40;

}  // namespace

MonitorWatch::~MonitorWatch() {
  if (_readableSource != 0) g_source_remove(_readableSource);
  if (_quietSource != 0) g_source_remove(_quietSource);
}

void MonitorWatch::observe(std::function<void()> changed) {
  if (_connection == nullptr) start();
  _observers.push_back(std::move(changed));
}

void MonitorWatch::start() {
  _connection = std::make_unique<Connection>();
  selectEvents();
  followSettings();
  _known = {monitors(), pixelsPerPoint()};
  _readableSource =
      g_unix_fd_add(xcb_get_file_descriptor(_connection->get()), G_IO_IN, &onReadable, this);
  // what came together with the replies above is buffered already and makes nothing readable
  compareSoon();
}

void MonitorWatch::selectEvents() {
  // A monitor set or deleted by name shows only as a configure event of the root window; a new
  // owner of the settings announces itself there too.
  const uint32_t rootEvents = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(_connection->get(), _connection->root(), XCB_CW_EVENT_MASK,
                               &rootEvents);
  xcb_randr_select_input(_connection->get(), _connection->root(),
                         XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                             XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
}

void MonitorWatch::followSettings() {
  const xcb_window_t owner = settingsOwner(*_connection);
  if (owner != XCB_WINDOW_NONE) {
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(_connection->get(), owner, XCB_CW_EVENT_MASK, &events);
  }
  xcb_flush(_connection->get());
}

bool MonitorWatch::readEvents() {
  bool any = false;
  while (Received<xcb_generic_event_t>(xcb_poll_for_event(_connection->get())) != nullptr) {
    any = true;
  }
  return any;
}

void MonitorWatch::compareSoon() {
  if (_quietSource == 0) _quietSource = g_timeout_add(kQuietMilliseconds, &onQuiet, this);
}

void MonitorWatch::compare() {
  Displays now{monitors(), pixelsPerPoint()};
  if (!_connection->isAlive() || now == _known) return;
  _known = std::move(now);
  const auto observers = _observers;
  for (const auto& changed : observers) changed();
}

gboolean MonitorWatch::onReadable(int, GIOCondition, gpointer self) noexcept {
  auto& watch = *static_cast<MonitorWatch*>(self);
  if (watch.readEvents()) watch.compareSoon();
  if (watch._connection->isAlive()) return G_SOURCE_CONTINUE;
  watch._readableSource = 0;
  return G_SOURCE_REMOVE;
}

gboolean MonitorWatch::onQuiet(gpointer self) noexcept {
  auto& watch = *static_cast<MonitorWatch*>(self);
  watch._quietSource = 0;
  // its reply may bring events in with it, which then make nothing readable
  watch.followSettings();
  if (watch.readEvents()) watch.compareSoon();
  watch.compare();
  return G_SOURCE_REMOVE;
}

}  // namespace tapdeck::quartz
