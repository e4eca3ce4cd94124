#include "Runner/Plugins.h"

namespace tapdeck {
namespace {

constexpr const char* kPluginClassNames[] = {
    "FilePickerPlugin",
    "FirebaseAnalyticsPlugin",
    "FLTFirebaseCorePlugin",
    "FLTFirebaseCrashlyticsPlugin",
    "FlutterLocalNotificationsPlugin",
    "FlutterPlatformAlertPlugin",
    "FlutterSecureStorageDarwinPlugin",
    "LocalNotifierPlugin",
    "FPPPackageInfoPlusPlugin",
    "ScreenRetrieverMacosPlugin",
    "SharePlusMacosPlugin",
    "SharedPreferencesPlugin",
    "SystemTrayPlugin",
    "TrayManagerPlugin",
    "UrlLauncherPlugin",
    "WindowManagerPlugin",
};

}  // namespace

void registerPlugins(UIEngine& engine) {
  for (const char* name : kPluginClassNames) engine.registerPlugin(name);
}

}  // namespace tapdeck
