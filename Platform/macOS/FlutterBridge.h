#pragma once

#import <FlutterMacOS/FlutterMacOS.h>

#include <map>
#include <string>

#include "Engine/UIEngine.h"

namespace tapdeck::platform {

/// Flutter's engine behind a view controller. Main thread only. It keeps the view controller and
/// every channel that it made; the standard method codec is the channels' default.
class FlutterBridge : public UIEngine {
 public:
  explicit FlutterBridge(FlutterViewController* _Nonnull viewController);

  void setMethodCallHandler(const std::string& channel, MethodCallHandler handler) override;
  void invokeMethod(const std::string& channel, const std::string& method,
                    const Value& arguments) override;
  /// The class is looked for under its bare name, then as a class of any Swift module.
  bool registerPlugin(const std::string& className) override;

 private:
  FlutterMethodChannel* _Nonnull channelNamed(const std::string& name);

  FlutterViewController* _Nonnull _viewController;
  std::map<std::string, FlutterMethodChannel * __strong> _channels;
};

}  // namespace tapdeck::platform
