#include "Platform/Linux/Application/TerminationSignals.h"

#include <glib-unix.h>

#include <csignal>
#include <utility>

namespace tapdeck {
namespace {

/// Whether whoever started the process, such as nohup, wants it to ignore the signal.
bool isIgnored(int signal) {
  struct sigaction action {};
  return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

TerminationSignals::TerminationSignals(std::function<void()> received)
    : _received(std::move(received)),
      _context(g_main_context_new()),
      _loop(g_main_loop_new(_context.get(), FALSE)) {
  listenTo(SIGTERM);
  listenTo(SIGINT);
  if (!isIgnored(SIGHUP)) listenTo(SIGHUP);
  _thread = std::thread([loop = _loop.get()] { g_main_loop_run(loop); });
}

TerminationSignals::~TerminationSignals() {
  // a loop that does not run yet would not hear of being quit at once
  const GSourceFunc quit = [](gpointer loop) noexcept -> gboolean {
    g_main_loop_quit(static_cast<GMainLoop*>(loop));
    return G_SOURCE_REMOVE;
  };
  GSource* source = g_idle_source_new();
  g_source_set_callback(source, quit, _loop.get(), nullptr);
  g_source_attach(source, _context.get());
  g_source_unref(source);
  _thread.join();
}

void TerminationSignals::listenTo(int signal) {
  GSource* source = g_unix_signal_source_new(signal);
  const GSourceFunc call = [](gpointer self) noexcept -> gboolean {
    static_cast<TerminationSignals*>(self)->_received();
    return G_SOURCE_CONTINUE;
  };
  g_source_set_callback(source, call, this, nullptr);
  g_source_attach(source, _context.get());
  g_source_unref(source);
}

}  // namespace tapdeck
