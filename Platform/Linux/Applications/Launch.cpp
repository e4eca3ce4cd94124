#include "Platform/Linux/Applications/Launch.h"

#include <fcntl.h>
#include <gdk/gdkx.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

namespace tapdeck::applications {
namespace {

/// The X server's present time. GDK itself knows only when the user last touched a window of this
/// process, which window managers take for a reason to keep what it starts in the background.
guint32 serverTime(GdkDisplay* display) {
  GdkWindowAttr attributes{};
  attributes.window_type = GDK_WINDOW_TOPLEVEL;
  attributes.wclass = GDK_INPUT_ONLY;
  attributes.event_mask = GDK_PROPERTY_CHANGE_MASK;
  attributes.width = attributes.height = 1;
  GdkScreen* screen = gdk_display_get_default_screen(display);
  GdkWindow* asker = gdk_window_new(gdk_screen_get_root_window(screen), &attributes, 0);
  const guint32 time = gdk_x11_get_server_time(asker);
  gdk_window_destroy(asker);
  return time;
}

Object<GAppLaunchContext> launchContext() {
  GdkDisplay* display = gdk_display_get_default();
  if (display == nullptr) return Object<GAppLaunchContext>(g_app_launch_context_new());
  GdkAppLaunchContext* context = gdk_display_get_app_launch_context(display);
  gdk_app_launch_context_set_timestamp(context, serverTime(display));
  return Object<GAppLaunchContext>(G_APP_LAUNCH_CONTEXT(context));
}

/// Open for as long as this lives; -1, which stands for the host's own streams, when it cannot be.
struct NullDevice {
  NullDevice() : descriptor(open("/dev/null", O_RDWR | O_CLOEXEC)) {}
  NullDevice(const NullDevice&) = delete;
  NullDevice& operator=(const NullDevice&) = delete;
  ~NullDevice() {
    if (descriptor >= 0) close(descriptor);
  }
  const int descriptor;
};

/// Takes the error; null for none.
void tellFailure(const std::string& id, GError* error) {
  if (const Error failure{error}) {
    std::fprintf(stderr, "tapdeck: %s cannot be started: %s\n", id.c_str(), failure->message);
  }
}

/// What is typed in the host's terminal, such as Control-C, is not for what it has started.
void leaveSession(gpointer) {
  setsid();
}

void launchProgram(const DesktopEntry& entry) {
  GError* error = nullptr;
  // what an application says belongs neither into the host's output nor keeps it open
  const NullDevice null;
  g_desktop_app_info_launch_uris_as_manager_with_fds(
      entry.info.get(), nullptr, launchContext().get(), G_SPAWN_SEARCH_PATH, leaveSession, nullptr,
      nullptr, nullptr, null.descriptor, null.descriptor, null.descriptor, &error);
  tellFailure(entry.id, error);
}

/// By D-Bus activation, as the Desktop Entry standard has it for "DBusActivatable".
bool isStartedByBus(const DesktopEntry& entry) {
  const std::string name = std::filesystem::path(entry.path).stem();
  return g_desktop_app_info_get_boolean(entry.info.get(), "DBusActivatable") != FALSE &&
         g_dbus_is_interface_name(name.c_str()) != FALSE;
}

void finishLaunch(GObject* info, GAsyncResult* result, gpointer data) {
  const std::unique_ptr<std::string> id(static_cast<std::string*>(data));
  GError* error = nullptr;
  g_app_info_launch_uris_finish(G_APP_INFO(info), result, &error);
  tellFailure(*id, error);
}

void launchByBus(const DesktopEntry& entry) {
  // GLib takes a context without a startup notification for a mistake once the launch has failed
  const bool isNotified =
      g_desktop_app_info_get_boolean(entry.info.get(), "StartupNotify") != FALSE;
  const auto context = isNotified ? launchContext() : nullptr;
  g_app_info_launch_uris_async(G_APP_INFO(entry.info.get()), nullptr, context.get(), nullptr,
                               finishLaunch, new std::string(entry.id));
}

}  // namespace

void launch(const DesktopEntry& entry) {
  if (isStartedByBus(entry)) {
    launchByBus(entry);
  } else {
    launchProgram(entry);
  }
}

}  // namespace tapdeck::applications
