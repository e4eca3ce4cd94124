#include "Tests/Support/Recording/Recording.h"

#include <cstdio>
#include <utility>

namespace tapdeck::recording {
namespace {

Script currentScript;
std::vector<std::string> currentTrace;

void runAll(std::vector<std::function<void()>>& queue) {
  for (auto& work : std::exchange(queue, {})) work();
}

}  // namespace

Script& script() {
  return currentScript;
}

Queued& queued() {
  static Queued instance;
  return instance;
}

void reset() {
  currentScript = Script();
  currentTrace.clear();
  queued() = Queued();
  forgetEvents();
}

void record(const std::string& line) {
  currentTrace.push_back(line);
}

std::vector<std::string> takeTrace() {
  return std::exchange(currentTrace, {});
}

void runGlobalQueues() {
  runAll(queued().global);
}

void runMainQueue() {
  runAll(queued().main);
}

void notifyScreenParameters() {
  for (const auto& observer : queued().screenObservers) observer();
}

std::string describe(CGPoint point) {
  char text[64];
  std::snprintf(text, sizeof text, "(%.15g,%.15g)", point.x, point.y);
  return text;
}

}  // namespace tapdeck::recording
