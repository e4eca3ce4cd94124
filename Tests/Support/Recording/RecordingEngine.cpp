#include "Tests/Support/Recording/RecordingEngine.h"

#include <memory>
#include <utility>

#include "Tests/Support/Recording/Recording.h"

namespace tapdeck::recording {

void RecordingEngine::setMethodCallHandler(const std::string& channel, MethodCallHandler handler) {
  record("handle " + channel);
  _handlers[channel] = std::move(handler);
}

void RecordingEngine::invokeMethod(const std::string& channel, const std::string& method,
                                   const Value& arguments) {
  record("invoke " + method + " on " + channel);
  lastInvocation = arguments;
}

bool RecordingEngine::registerPlugin(const std::string& className) {
  const bool present = !absentPlugins.contains(className);
  record((present ? "register " : "without ") + className);
  return present;
}

std::optional<Outcome> RecordingEngine::call(const std::string& channel, const std::string& method,
                                             Value arguments) {
  auto direct = std::make_shared<std::optional<Outcome>>();
  auto returned = std::make_shared<bool>(false);
  _handlers.at(channel)(MethodCall{method, std::move(arguments)},
                        Reply([this, direct, returned](Outcome outcome) {
                          if (*returned) {
                            laterReplies.push_back(std::move(outcome));
                          } else {
                            *direct = std::move(outcome);
                          }
                        }));
  *returned = true;
  return *direct;
}

}  // namespace tapdeck::recording
