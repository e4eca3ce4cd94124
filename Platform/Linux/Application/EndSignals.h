#pragma once

#include <glib.h>

#include <functional>
#include <memory>
#include <thread>

namespace tapdeck {

/// Hears SIGTERM, SIGINT and, unless it is ignored, SIGHUP for as long as this lives, on a thread
/// of its own: the main thread may be in the middle of a long text.
class EndSignals {
 public:
  /// `heard` is called on that thread, for each signal.
  explicit EndSignals(std::function<void()> heard);
  EndSignals(const EndSignals&) = delete;
  EndSignals& operator=(const EndSignals&) = delete;
  ~EndSignals();

 private:
  struct Release {
    void operator()(GMainContext* context) const { g_main_context_unref(context); }
    void operator()(GMainLoop* loop) const { g_main_loop_unref(loop); }
  };
  void listenTo(int signal);

  std::function<void()> _heard;
  std::unique_ptr<GMainContext, Release> _context;
  std::unique_ptr<GMainLoop, Release> _loop;
  std::thread _thread;
};

}  // namespace tapdeck
