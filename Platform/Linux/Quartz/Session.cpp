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
  auto fresh = std::make_unique<Session>();
  current() = std::move(fresh);
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
