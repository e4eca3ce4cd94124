#include "Runner/Waking.h"

#include "Engine/MethodChannel.h"
#include "LaunchAtLogin/Channel.h"
#include "LaunchAtLogin/LaunchAtLogin.h"
#include "Platform/Screens.h"
#include "Runner/ControlChannel.h"
#include "Runner/Plugins.h"

namespace tapdeck {

void wakeMainWindow(const std::shared_ptr<MainFlutterWindow>& window,
                    const std::shared_ptr<UIEngine>& engine) {
  LaunchAtLogin::shared().migrateIfNeeded();  // before anybody can ask
  MethodChannel("launch_at_startup", engine).setMethodCallHandler(handleLaunchAtStartupCall);
  registerPlugins(*engine);
  installControlChannel(window, engine);
  platform::observeScreenParameters([weak = std::weak_ptr(window)] { sendDisplaysChanged(weak); });
}

}  // namespace tapdeck
