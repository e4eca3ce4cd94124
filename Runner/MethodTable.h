#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "Engine/Reply.h"
#include "Runner/Arguments.h"
#include "Runner/MainFlutterWindow.h"

namespace tapdeck {

/// What a method replies when the main window no longer exists; nothing else is done then.
enum class WindowGone {
  replyNull,
  replyEmptyList,
  replyEmptyString,
  replyFalse,
  replyVolume50,
  /// The method runs all the same, with a null window.
  runAnyway,
};

/// One call on its way through the table. `window` is held for the duration of the call.
struct ControlCall {
  std::shared_ptr<MainFlutterWindow> window;
  Arguments arguments;
};

/// One row of the control channel's method table.
struct ControlMethod {
  std::string_view name;
  WindowGone windowGone;
  void (*run)(const ControlCall& call, Reply reply);
};

/// The 49 methods of the control channel, in the order in which names are compared.
std::span<const ControlMethod> controlMethods();

}  // namespace tapdeck
