#pragma once

#include <functional>
#include <string>

#include "Engine/MethodCall.h"
#include "Engine/Reply.h"

namespace tapdeck {

/// What answers the calls of one channel: called on the main thread, answers through the reply.
using MethodCallHandler = std::function<void(const MethodCall& call, Reply reply)>;

/// The UI engine as the host sees it: the far end of every method channel and the registry of its
/// plug-ins. Flutter stands behind it on the Mac, the stand-in engine on Linux. Main thread only.
class UIEngine {
 public:
  virtual ~UIEngine() = default;

  /// Calls that arrive for `channel` go to `handler` from now on; an empty handler takes it away.
  virtual void setMethodCallHandler(const std::string& channel, MethodCallHandler handler) = 0;
  /// Calls `method` on the engine's side of `channel`; no reply is awaited.
  virtual void invokeMethod(const std::string& channel, const std::string& method,
                            const Value& arguments) = 0;
  /// Registers the plug-in whose class has this name, under the name as its registrar key. False
  /// when no such class is in the process.
  virtual bool registerPlugin(const std::string& className) = 0;
};

}  // namespace tapdeck
