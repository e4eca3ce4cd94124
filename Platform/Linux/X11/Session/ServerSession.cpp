#include "Platform/Linux/X11/Session/ServerSession.h"

#include <memory>
#include <utility>

#include "Platform/Linux/X11/Session/WindowServer.h"

namespace tapdeck::x11 {
namespace {

std::unique_ptr<ServerSession>& current() {
  static std::unique_ptr<ServerSession> only;
  return only;
}

}  // namespace

ServerSession* session() {
  return current().get();
}

void connectToWindowServer() {
  // the old session ends first, and with it what it holds pressed
  current().reset();
  current() = std::make_unique<ServerSession>();
}

void observeMonitors(std::function<void()> changed) {
  if (session() != nullptr) session()->state.observe(std::move(changed));
}

void offerMediaKeys(std::function<bool(uint32_t keyType)> take) {
  if (session() != nullptr) session()->poster.offerMediaKeys(std::move(take));
}

bool isPressWaiting() {
  return session() != nullptr && session()->poster.isPressWaiting();
}

void releaseEverything() {
  if (session() == nullptr) return;
  session()->poster.releaseEverything();
  session()->cursor.showAtOnce();
}

std::vector<Monitor> monitors() {
  if (session() == nullptr) return {};
  return session()->state.monitors();
}

double pixelsPerPoint() {
  return session() != nullptr ? session()->state.pixelsPerPoint() : 1;
}

PointSpace currentPointSpace() {
  return {monitors(), pixelsPerPoint()};
}

std::optional<Pixel> pointerPixel() {
  if (session() == nullptr) return std::nullopt;
  if (const auto waiting = session()->poster.waitingMotion()) return waiting;
  const Connection& connection = session()->connection;
  const auto pointer = connection.wait(xcb_query_pointer(connection.get(), connection.root()),
                                       xcb_query_pointer_reply);
  if (pointer == nullptr) return std::nullopt;
  return Pixel{pointer->root_x, pointer->root_y};
}

}  // namespace tapdeck::x11
