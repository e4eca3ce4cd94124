#include "LaunchAtLogin/Channel.h"

#include "LaunchAtLogin/LaunchAtLogin.h"
#include "Platform/ProcessInfo.h"

namespace tapdeck {
namespace {

constexpr const char* kSetEnabledValue = "setEnabledValue";

// Stricter than the control channel, where the numbers 0 and 1 pass for booleans.
bool requiredBoolean(const ValueMap& map, const char* key) {
  const Value* value = map.find(key);
  const bool* flag = value != nullptr ? value->getIf<bool>() : nullptr;
  if (flag == nullptr) {
    platform::stopProcess(std::string("launchAtStartupSetEnabled needs a boolean under \"") + key +
                          "\"");
  }
  return *flag;
}

void setEnabled(const Value& arguments) {
  const auto* map = arguments.getIf<ValueMap>();
  if (map == nullptr || !map->hasOnlyStringKeys()) return;
  LaunchAtLogin::shared().setEnabled(requiredBoolean(*map, kSetEnabledValue));
}

}  // namespace

void handleLaunchAtStartupCall(const MethodCall& call, Reply reply) {
  if (call.method == "launchAtStartupIsEnabled") {
    reply.success(Value(LaunchAtLogin::shared().isEnabled()));
  } else if (call.method == "launchAtStartupSetEnabled") {
    setEnabled(call.arguments);
    reply.success();
  } else {
    reply.notImplemented();
  }
}

}  // namespace tapdeck
