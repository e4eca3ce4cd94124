#include "LaunchAtLogin/Channel.h"

#include "LaunchAtLogin/LaunchAtLogin.h"
#include "Platform/ProcessInfo.h"
#include "Runner/Arguments.h"

namespace tapdeck {
namespace {

constexpr const char* kSetEnabledValue = "setEnabledValue";

bool requiredBoolean(const Value& arguments, const char* key) {
  const auto flag = Arguments(arguments).boolean(key);
  if (!flag) {
    platform::stopProcess(std::string("launchAtStartupSetEnabled needs a boolean under \"") + key +
                          "\"");
  }
  return *flag;
}

void setEnabled(const Value& arguments) {
  const auto* map = arguments.getIf<ValueMap>();
  if (map == nullptr || !map->hasOnlyStringKeys()) return;
  LaunchAtLogin::shared().setEnabled(requiredBoolean(arguments, kSetEnabledValue));
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
