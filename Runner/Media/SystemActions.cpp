#include "Runner/Media/SystemActions.h"

#include <dlfcn.h>

#include "Runner/Media/Numbers.h"
#include "Runner/Media/Scripts.h"
#include "Runner/Media/Text.h"

namespace tapdeck {
namespace {

constexpr int64_t kUnknownVolume = 50;

void tellSystemEvents(const char* command) {
  runScriptInProcess(std::string("tell application \"System Events\" to ") + command);
}

}  // namespace

int64_t volumeLevel() {
  const std::string output = runScriptCapturing("output volume of (get volume settings)");
  return decimalInteger(trimmed(output)).value_or(kUnknownVolume);
}

void volumeUp() {
  runScriptDetached("set volume output volume (output volume of (get volume settings) + 10)");
}

void volumeDown() {
  runScriptDetached("set volume output volume (output volume of (get volume settings) - 10)");
}

void volumeMute() {
  runScriptDetached("set volume output muted (not (output muted of (get volume settings)))");
}

void lockScreen() {
  // no header declares it and no public framework exports it
  using LockScreen = int (*)();
  void* process = dlopen(nullptr, RTLD_LAZY);
  if (process == nullptr) return;
  const auto lock = reinterpret_cast<LockScreen>(dlsym(process, "SACLockScreenImmediate"));
  if (lock != nullptr) lock();
  dlclose(process);
}

void sleepSystem() {
  tellSystemEvents("sleep");
}

void shutDownSystem() {
  tellSystemEvents("shut down");
}

void restartSystem() {
  tellSystemEvents("restart");
}

}  // namespace tapdeck
