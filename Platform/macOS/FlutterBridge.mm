#import "Platform/macOS/FlutterBridge.h"

#import <objc/runtime.h>

#include <cstdlib>
#include <memory>
#include <string_view>

#import "Platform/macOS/FlutterValues.h"
#import "Platform/macOS/Strings.h"

namespace tapdeck::platform {
namespace {

bool isPlugin(Class candidate) {
  return class_getClassMethod(candidate, @selector(registerWithRegistrar:)) != nullptr;
}

// The Objective-C runtime knows a Swift class as "module.Name".
Class findInSwiftModules(const std::string& name) {
  const std::string ending = "." + name;
  unsigned int count = 0;
  const std::unique_ptr<Class __unsafe_unretained[], decltype(&std::free)> classes(
      objc_copyClassList(&count), std::free);
  for (unsigned int i = 0; i < count; ++i) {
    if (std::string_view(class_getName(classes[i])).ends_with(ending) && isPlugin(classes[i])) {
      return classes[i];
    }
  }
  return Nil;
}

Class findPlugin(const std::string& name) {
  Class found = NSClassFromString(nameFromUtf8(name));
  return found != Nil && isPlugin(found) ? found : findInSwiftModules(name);
}

}  // namespace

FlutterBridge::FlutterBridge(FlutterViewController* viewController)
    : _viewController(viewController) {}

FlutterMethodChannel* FlutterBridge::channelNamed(const std::string& name) {
  FlutterMethodChannel* __strong& channel = _channels[name];
  if (channel == nil) {
    channel = [FlutterMethodChannel methodChannelWithName:nameFromUtf8(name)
                                          binaryMessenger:_viewController.engine.binaryMessenger];
  }
  return channel;
}

void FlutterBridge::setMethodCallHandler(const std::string& channel, MethodCallHandler handler) {
  if (!handler) {
    [channelNamed(channel) setMethodCallHandler:nil];
    return;
  }
  [channelNamed(channel) setMethodCallHandler:^(FlutterMethodCall* call, FlutterResult result) {
    handler({utf8FromString(call.method), valueFromFlutter(call.arguments)},
            Reply([result](const Outcome& outcome) { result(flutterFromOutcome(outcome)); }));
  }];
}

void FlutterBridge::invokeMethod(const std::string& channel, const std::string& method,
                                 const Value& arguments) {
  [channelNamed(channel) invokeMethod:nameFromUtf8(method) arguments:flutterFromValue(arguments)];
}

bool FlutterBridge::registerPlugin(const std::string& className) {
  Class<FlutterPlugin> plugin = findPlugin(className);
  if (plugin == Nil) return false;
  [plugin registerWithRegistrar:[_viewController registrarForPlugin:nameFromUtf8(className)]];
  return true;
}

}  // namespace tapdeck::platform
