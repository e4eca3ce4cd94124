#include "Platform/Linux/Application/FatalError.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>

#include "Platform/Linux/EngineProtocol/SessionFile.h"
#include "Platform/Linux/X11/Shutdown.h"
#include "Platform/Linux/X11/Session/WindowServer.h"

namespace tapdeck {
namespace {

constexpr unsigned kPatienceSeconds = 2;

void sayWhy() {
  try {
    if (const auto thrown = std::current_exception()) std::rethrow_exception(thrown);
    std::fputs("tapdeck-host: ended by an error.\n", stderr);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "tapdeck-host: ended by an error: %s\n", error.what());
  } catch (...) {
    std::fputs("tapdeck-host: ended by an error of an unknown kind.\n", stderr);
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
