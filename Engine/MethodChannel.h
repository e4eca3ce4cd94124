#pragma once

#include <memory>
#include <string>

#include "Engine/UIEngine.h"

namespace tapdeck {

/// A named method channel to the UI engine, with the standard method codec. Main thread only; it
/// keeps the engine alive. Destroying the channel takes no handler away: handlers live as long as
/// the engine.
class MethodChannel {
 public:
  MethodChannel(std::string name, std::shared_ptr<UIEngine> engine);

  const std::string& name() const { return _name; }
  void setMethodCallHandler(MethodCallHandler handler);
  /// Calls `method` on the engine's side; no reply is awaited.
  void invokeMethod(const std::string& method, const Value& arguments);

 private:
  std::string _name;
  std::shared_ptr<UIEngine> _engine;
};

}  // namespace tapdeck
