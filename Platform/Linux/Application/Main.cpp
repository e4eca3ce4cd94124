#include <glib-unix.h>
#include <glibmm/main.h>
#include <gtkmm/main.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "Platform/Linux/Application/GtkConnection.h"
#include "Platform/Linux/Application/MainWindow.h"
#include "Platform/Linux/Application/Options.h"
#include "Platform/Linux/EngineProtocol/SessionFile.h"
#include "Platform/Linux/Fronts/Pasteboard.h"
#include "Platform/Linux/Fronts/Queues.h"
#include "Platform/Linux/X11/Session/WindowServer.h"
#include "Runner/MainFlutterWindow.h"
#include "Runner/Waking.h"

namespace tapdeck {

namespace {

constexpr int kUsageError = 64;
constexpr std::chrono::milliseconds kLastWork{2000};

/// A Unix signal that the main loop hears for as long as this lives.
class SignalSource {
 public:
  SignalSource(int number, std::function<void()> heard) : _heard(std::move(heard)) {
    _source = g_unix_signal_add(number, call, this);
  }
  SignalSource(const SignalSource&) = delete;
  SignalSource& operator=(const SignalSource&) = delete;
  ~SignalSource() { g_source_remove(_source); }

 private:
  static gboolean call(gpointer self) {
    static_cast<SignalSource*>(self)->_heard();
    return G_SOURCE_CONTINUE;
  }

  std::function<void()> _heard;
  guint _source = 0;
};

/// Whether whoever started the process, such as nohup, wants it to ignore the signal.
bool isIgnored(int signal) {
  struct sigaction action {};
  return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

/// Runs the host until it is asked to quit; all of it but what GTK holds is gone afterwards.
void serve(const Options& options) {
  const auto loop = Glib::MainLoop::create();
  const auto quit = [loop] { loop->quit(); };
  MainWindow* mainWindow = nullptr;
  // Before the engine writes the session file, which a signal must not leave behind. None is heard
  // until the loop runs, and then there is a window.
  const SignalSource terminate(SIGTERM, quit);
  const SignalSource interrupt(SIGINT, quit);
  const SignalSource show(SIGUSR1, [&mainWindow] { mainWindow->bringForward(); });
  std::optional<SignalSource> hangUp;
  if (!isIgnored(SIGHUP)) hangUp.emplace(SIGHUP, quit);

  const auto engine = StandInEngine::start({options.address, options.port});
  const auto state = std::make_shared<MainFlutterWindow>();
  wakeMainWindow(state, engine);
  MainWindow window(state, engine, quit);
  mainWindow = &window;
  window.bringForward();

  std::printf("Tapdeck: %s\n", engine->pageAddresses().front().c_str());
  std::fflush(stdout);
  loop->run();
  engine->stop();
  // while the signals are still heard: a second one must not end the process before this is done
  quartz::letGo();
}

int run(const Options& options) {
  quartz::connectToWindowServer();
  connectGtk();
  Gtk::Main::init_gtkmm_internals();
  serve(options);

  platform::storePasteboard();
  if (!platform::finishGlobalQueues(kLastWork)) _exit(EXIT_SUCCESS);
  return EXIT_SUCCESS;
}

/// The session's process is trusted only while it runs this very program: a number left by a host
/// that crashed may be another program's by now.
bool runsThisProgram(int pid) {
  namespace fs = std::filesystem;
  std::error_code unreadable;
  const auto theirs = fs::read_symlink("/proc/" + std::to_string(pid) + "/exe", unreadable);
  return !unreadable && theirs == fs::read_symlink("/proc/self/exe", unreadable);
}

int showRunningHost() {
  const auto session = readSession();
  if (!session || !runsThisProgram(session->pid) || kill(session->pid, SIGUSR1) != 0) {
    std::fputs("tapdeck-host: no host is running.\n", stderr);
    return EXIT_FAILURE;
  }
  std::printf("Tapdeck: %s\n", session->url.c_str());
  return EXIT_SUCCESS;
}

int perform(const Options& options) {
  switch (options.action) {
    case Options::Action::show:
      return showRunningHost();
    case Options::Action::printVersion:
      std::puts("tapdeck-host " TAPDECK_VERSION);
      return EXIT_SUCCESS;
    case Options::Action::run:
      return run(options);
  }
  return EXIT_FAILURE;
}

}  // namespace

}  // namespace tapdeck

int main(int argc, char** argv) {
  const auto options = tapdeck::parseOptions(argc, argv);
  if (!options) return tapdeck::kUsageError;
  try {
    return tapdeck::perform(*options);
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "tapdeck-host: %s\n", problem.what());
    return EXIT_FAILURE;
  }
}
