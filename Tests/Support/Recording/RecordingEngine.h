#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Engine/UIEngine.h"
#include "Tests/Support/Recording/Recording.h"

namespace tapdeck::recording {

/// A UI engine that keeps the handlers it is given, lets a test call them, and records the rest in
/// the platform's trace.
class RecordingEngine final : public UIEngine {
 public:
  void setMethodCallHandler(const std::string& channel, MethodCallHandler handler) override {
    record("handle " + channel);
    _handlers[channel] = std::move(handler);
  }
  void invokeMethod(const std::string& channel, const std::string& method,
                    const Value& arguments) override {
    record("invoke " + method + " on " + channel);
    lastInvocation = arguments;
  }
  bool registerPlugin(const std::string& className) override {
    const bool present = !absentPlugins.contains(className);
    record((present ? "register " : "without ") + className);
    return present;
  }

  /// Calls the channel's handler; the outcome, or none when it has not replied yet. Replies that
  /// come later are appended to `laterReplies`.
  std::optional<Outcome> call(const std::string& channel, const std::string& method,
                              Value arguments = Value()) {
    const auto direct = std::make_shared<std::optional<Outcome>>();
    const auto returned = std::make_shared<bool>(false);
    const auto reply = [this, direct, returned](Outcome outcome) {
      *returned ? laterReplies.push_back(std::move(outcome)) : void(*direct = std::move(outcome));
    };
    _handlers.at(channel)(MethodCall{method, std::move(arguments)}, Reply(reply));
    *returned = true;
    return *direct;
  }

  /// Plug-in classes that this engine lacks.
  std::set<std::string> absentPlugins;
  std::vector<Outcome> laterReplies;
  /// The arguments of the last call that the host made.
  Value lastInvocation;

 private:
  std::map<std::string, MethodCallHandler> _handlers;
};

}  // namespace tapdeck::recording
