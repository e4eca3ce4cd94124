#include <glib-unix.h>
#include <glibmm/main.h>
#include <gtkmm/main.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "Platform/Linux/Application/FatalError.h"
#include "Platform/Linux/Application/GtkConnection.h"
#include "Platform/Linux/Application/MainWindow.h"
#include "Platform/Linux/Application/MediaKeys.h"
#include "Platform/Linux/Application/Options.h"
#include "Platform/Linux/Application/QrMatrix.h"
#include "Platform/Linux/Application/SingleInstance.h"
#include "Platform/Linux/Application/TerminationSignals.h"
#include "Platform/Linux/EngineProtocol/SessionFile.h"
#include "Platform/Linux/Fronts/Pasteboard.h"
#include "Platform/Linux/Fronts/Queues.h"
#include "Platform/Linux/Support/Diagnostics.h"
#include "Platform/Linux/X11/Session/WindowServer.h"
#include "Platform/Linux/X11/Shutdown.h"
#include "Platform/UserDefaults.h"
#include "Runner/MainFlutterWindow.h"
#include "Runner/Waking.h"

namespace tapdeck {

namespace {

constexpr int kUsageError = 64;
constexpr std::chrono::milliseconds kLastWork{300};
constexpr rlim_t kDescriptors = 4096;

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
  static gboolean call(gpointer self) noexcept {
    static_cast<SignalSource*>(self)->_heard();
    return G_SOURCE_CONTINUE;
  }

  std::function<void()> _heard;
  guint _source = 0;
};

/// The limit of a session is meant for programs that use select(); this one may have many open.
void raiseDescriptorLimit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
  limit.rlim_cur = std::max(limit.rlim_cur, std::min<rlim_t>(limit.rlim_max, kDescriptors));
  setrlimit(RLIMIT_NOFILE, &limit);
}

/// The address holds the run's token, which is for the person who started the host: standard output
/// that is no terminal may be a journal that others read.
void printAddress(const StandInEngine& engine) {
  if (isatty(STDOUT_FILENO) != 0) {
    const std::string address = engine.pageAddresses().front();
    if (engine.address() != kThisComputer) std::fputs(qrLines(address).c_str(), stdout);
    std::printf("Tapdeck: %s\n", address.c_str());
    if (engine.isEncrypted()) {
      std::printf("The certificate's SHA-256 fingerprint: %s\n", engine.fingerprint().c_str());
    }
  } else {
    std::printf("Tapdeck: the page's address is in %s\n", sessionFilePath().c_str());
  }
  std::fflush(stdout);
}

/// Runs the host until it is asked to quit; all of it but what GTK holds is gone afterwards.
void serve(const Options& options) {
  const auto loop = Glib::MainLoop::create();
  const MediaKeys mediaKeys;
  const auto quit = [loop] { loop->quit(); };
  MainWindow* mainWindow = nullptr;
  // Before the engine writes the session file, which a signal must not leave behind. None is heard
  // until the loop runs, and then there is a window.
  const TerminationSignals end([loop] {
    x11::beginShutdown();
    loop->quit();
  });
  const SignalSource show(SIGUSR1, [&mainWindow] { mainWindow->bringForward(); });

  StandInEngine::Options engineOptions;
  engineOptions.port = options.port;
  engineOptions.address = options.address.value_or(
      platform::userDefaultsBool(kAllowNetwork) ? kEveryAddress : kThisComputer);
  engineOptions.isEncrypted = options.isEncrypted || platform::userDefaultsBool(kEncryptNetwork);
  engineOptions.isPressWaiting = x11::isPressWaiting;
  const auto engine = StandInEngine::start(engineOptions);
  const auto state = std::make_shared<MainFlutterWindow>();
  wakeMainWindow(state, engine);
  const bool isGiven = options.address.has_value() && *options.address != kThisComputer;
  MainWindow window(state, engine, isGiven ? *options.address : kEveryAddress, quit);
  mainWindow = &window;
  window.bringForward();

  printAddress(*engine);
  loop->run();
  engine->stop();
  // while the signals are still heard: a second one must not end the process before this is done
  x11::releaseEverything();
}

int run(const Options& options) {
  endCleanlyOnFatalError();
  raiseDescriptorLimit();
  x11::connectToWindowServer();
  connectGtk();
  Gtk::Main::init_gtkmm_internals();
  if (!claimDisplay()) {
    warn(
        "another Tapdeck controls this display already. Bring it forward with --show, or end it "
        "first.");
    return EXIT_FAILURE;
  }
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
    warn("no host is running.");
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
    tapdeck::warn(problem.what());
    return EXIT_FAILURE;
  }
}
