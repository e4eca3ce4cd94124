#include "Platform/RepeatingTimer.h"

#include <glib.h>

#include <cmath>
#include <utility>

#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::platform {

/// A source of the default main context with its own source functions, since GLib's timeouts count
/// whole milliseconds.
struct RepeatingTimer::Timer {
  struct TimerSource {
    GSource base;
    Timer* timer;
  };

  static gboolean dispatch(GSource* source, GSourceFunc, gpointer) noexcept {
    // a copy, as the function may end the timer
    const auto fired = reinterpret_cast<TimerSource*>(source)->timer->fireLater(source);
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

  std::function<void()> fired;
  /// In microseconds.
  gint64 interval;
  gint64 next;
  /// Null once the timer has ended.
  glib::Source source;
};

RepeatingTimer::RepeatingTimer(double interval, std::function<void()> fired)
    : _timer(std::make_unique<Timer>()) {
  static GSourceFuncs functions = {nullptr, nullptr, Timer::dispatch, nullptr, nullptr, nullptr};
  constexpr double kMicroseconds = 1e6;
  _timer->fired = std::move(fired);
  _timer->interval = std::max<gint64>(1, std::llround(interval * kMicroseconds));
  _timer->next = g_get_monotonic_time() + _timer->interval;
  _timer->source.reset(g_source_new(&functions, sizeof(Timer::TimerSource)));
  reinterpret_cast<Timer::TimerSource*>(_timer->source.get())->timer = _timer.get();
  g_source_set_ready_time(_timer->source.get(), _timer->next);
  g_source_attach(_timer->source.get(), nullptr);
}

RepeatingTimer::~RepeatingTimer() = default;

void RepeatingTimer::invalidate() {
  _timer->source.reset();
}

}  // namespace tapdeck::platform
