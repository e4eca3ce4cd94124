#include "Runner/ControlChannel.h"

#include <algorithm>

#include "Engine/Channels.h"
#include "Runner/Display/DisplayGeometry.h"
#include "Runner/MethodTable.h"

namespace tapdeck {
namespace {

Value windowGoneReply(WindowGone kind) {
  switch (kind) {
    case WindowGone::replyEmptyList:
      return Value(Value::List());
    case WindowGone::replyEmptyString:
      return Value("");
    case WindowGone::replyFalse:
      return Value(false);
    case WindowGone::replyVolume50:
      return Value(50);
    case WindowGone::replyNull:
    case WindowGone::runAnyway:
      break;
  }
  return {};
}

}  // namespace

void handleControlCall(const std::weak_ptr<MainFlutterWindow>& window, const MethodCall& call,
                       Reply reply) {
  const auto methods = controlMethods();
  const auto method =
      std::find_if(methods.begin(), methods.end(),
                   [&](const ControlMethod& candidate) { return candidate.name == call.method; });
  if (method == methods.end()) {
    reply.notImplemented();
    return;
  }
  const std::shared_ptr<MainFlutterWindow> held = window.lock();
  if (!held && method->windowGone != WindowGone::runAnyway) {
    reply.success(windowGoneReply(method->windowGone));
    return;
  }
  method->run(ControlCall{held, Arguments(call.arguments)}, std::move(reply));
}

void installControlChannel(const std::shared_ptr<MainFlutterWindow>& window,
                           const std::shared_ptr<UIEngine>& engine,
                           const std::shared_ptr<ChannelActivity>& activity) {
  auto channel = std::make_unique<MethodChannel>(kControlChannel, engine);
  channel->setMethodCallHandler(
      [weak = std::weak_ptr(window), activity](const MethodCall& call, Reply reply) {
        activity->noteCall();
        handleControlCall(weak, call, std::move(reply));
      });
  window->_controlChannel = std::move(channel);
}

void sendDisplaysChanged(const std::weak_ptr<MainFlutterWindow>& window) {
  const auto held = window.lock();
  if (!held || !held->_controlChannel) return;
  held->_controlChannel->invokeMethod("displaysChanged", Value(allDisplays()));
}

}  // namespace tapdeck
