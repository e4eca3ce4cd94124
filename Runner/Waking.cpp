#include "Runner/Waking.h"

#include <utility>

#include "Engine/MethodChannel.h"
#include "LaunchAtLogin/Channel.h"
#include "LaunchAtLogin/LaunchAtLogin.h"
#include "Platform/Screens.h"
#include "Runner/ChannelActivity.h"
#include "Runner/ControlChannel.h"
#include "Runner/Plugins.h"

namespace tapdeck {

void wakeMainWindow(const std::shared_ptr<MainFlutterWindow>& window,
                    const std::shared_ptr<UIEngine>& engine) {
  LaunchAtLogin::shared().migrateIfNeeded();  // before anybody can ask
  const auto activity = std::make_shared<ChannelActivity>();
  MethodChannel("launch_at_startup", engine)
      .setMethodCallHandler([activity](const MethodCall& call, Reply reply) {
        activity->noteCall();
        handleLaunchAtStartupCall(call, std::move(reply));
      });
  registerPlugins(*engine);
  installControlChannel(window, engine, activity);
  platform::observeScreenParameters([weak = std::weak_ptr(window)] { sendDisplaysChanged(weak); });
}

}  // namespace tapdeck
