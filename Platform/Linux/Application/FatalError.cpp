#include "Platform/Linux/Application/FatalError.h"

#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <string>

#include "Platform/Linux/EngineProtocol/SessionFile.h"
#include "Platform/Linux/Support/Diagnostics.h"
#include "Platform/Linux/X11/Session/WindowServer.h"
#include "Platform/Linux/X11/Shutdown.h"

namespace tapdeck {
namespace {

constexpr unsigned kPatienceSeconds = 2;

void sayWhy() {
  try {
    if (const auto thrown = std::current_exception()) std::rethrow_exception(thrown);
    warn("ended by an error.");
  } catch (const std::exception& error) {
    warn(std::string("ended by an error: ") + error.what());
  } catch (...) {
    warn("ended by an error of an unknown kind.");
  }
}

[[noreturn]] void end() {
  // the thread that threw may have left a lock behind, and what failed may fail again
  std::set_terminate(std::abort);
  alarm(kPatienceSeconds);
  sayWhy();
  x11::beginShutdown();
  x11::releaseEverything();
  removeSession(getpid());
  _exit(EXIT_FAILURE);
}

}  // namespace

void endCleanlyOnFatalError() {
  std::set_terminate(end);
}

}  // namespace tapdeck
