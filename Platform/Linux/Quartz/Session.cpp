#include "Platform/Linux/Quartz/Session.h"

#include <memory>

namespace tapdeck::quartz {
namespace {

std::unique_ptr<Session>& current() {
  static std::unique_ptr<Session> only;
  return only;
}

}  // namespace

Session* session() {
  return current().get();
}

void connectToWindowServer() {
  // what the last one holds it gives back first
  current().reset();
  current() = std::make_unique<Session>();
}

void observeMonitors(std::function<void()> changed) {
  if (session() != nullptr) session()->monitorWatch.observe(std::move(changed));
}

void letGo() {
  if (session() == nullptr) return;
  session()->poster.letGo();
  session()->cursor.showAtOnce();
}

}  // namespace tapdeck::quartz
