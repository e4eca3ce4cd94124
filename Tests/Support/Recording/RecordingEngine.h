#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Engine/UIEngine.h"

namespace tapdeck::recording {

/// A UI engine that keeps the handlers it is given, lets a test call them, and records the rest in
/// the platform's trace.
class RecordingEngine final : public UIEngine {
 public:
  void setMethodCallHandler(const std::string& channel, MethodCallHandler handler) override;
  void invokeMethod(const std::string& channel, const std::string& method,
                    const Value& arguments) override;
  bool registerPlugin(const std::string& className) override;

  /// Calls the channel's handler; the outcome, or none when it has not replied yet. Replies that
  /// come later are appended to `laterReplies`.
  std::optional<Outcome> call(const std::string& channel, const std::string& method,
                              Value arguments = Value());

  /// Plug-in classes that this engine lacks.
  std::set<std::string> absentPlugins;
  std::vector<Outcome> laterReplies;
  /// The arguments of the last call that the host made.
  Value lastInvocation;

 private:
  std::map<std::string, MethodCallHandler> _handlers;
};

}  // namespace tapdeck::recording
