#include "Platform/RepeatingTimer.h"

#include <glib.h>

#include <cmath>
#include <utility>

namespace tapdeck::platform {

/// A source of the default main context. Of its own make, since GLib's timeouts count whole
/// milliseconds.
struct RepeatingTimer::Timer {
  struct Source {
    GSource base;
    Timer* timer;
  };

  static gboolean dispatch(GSource* source, GSourceFunc, gpointer) noexcept {
    // what is called may end the timer
    const auto fired = reinterpret_cast<Source*>(source)->timer->fireLater(source);
    fired();
    return G_SOURCE_CONTINUE;
  }

  std::function<void()> fireLater(GSource* clock) {
    const gint64 now = g_source_get_time(clock);
    do {
      next += interval;
    } while (next <= now);
    g_source_set_ready_time(clock, next);
    return fired;
  }

  void invalidate() {
    if (source == nullptr) return;
    g_source_destroy(source);
    g_source_unref(std::exchange(source, nullptr));
  }

  std::function<void()> fired;
  /// In microseconds.
  gint64 interval;
  gint64 next;
  GSource* source = nullptr;
};

RepeatingTimer::RepeatingTimer(double interval, std::function<void()> fired)
    : _timer(std::make_unique<Timer>()) {
  static GSourceFuncs functions = {nullptr, nullptr, Timer::dispatch, nullptr, nullptr, nullptr};
  constexpr double kMicroseconds = 1e6;
  _timer->fired = std::move(fired);
  _timer->interval = std::max<gint64>(1, std::llround(interval * kMicroseconds));
  _timer->next = g_get_monotonic_time() + _timer->interval;
  _timer->source = g_source_new(&functions, sizeof(Timer::Source));
  reinterpret_cast<Timer::Source*>(_timer->source)->timer = _timer.get();
  g_source_set_ready_time(_timer->source, _timer->next);
  g_source_attach(_timer->source, nullptr);
}

RepeatingTimer::~RepeatingTimer() {
  invalidate();
}

void RepeatingTimer::invalidate() {
  _timer->invalidate();
}

}  // namespace tapdeck::platform
