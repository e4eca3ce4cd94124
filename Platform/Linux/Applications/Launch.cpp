#include "Platform/Linux/Applications/Launch.h"

#include <fcntl.h>
#include <gdk/gdkx.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <string>

#include "Platform/Linux/Support/Diagnostics.h"
#include "Platform/Linux/Support/FileDescriptor.h"

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

glib::Object<GAppLaunchContext> launchContext() {
  GdkDisplay* display = gdk_display_get_default();
  if (display == nullptr) return glib::Object<GAppLaunchContext>(g_app_launch_context_new());
  GdkAppLaunchContext* context = gdk_display_get_app_launch_context(display);
  gdk_app_launch_context_set_timestamp(context, serverTime(display));
  return glib::Object<GAppLaunchContext>(G_APP_LAUNCH_CONTEXT(context));
}

/// Takes the error; null for none.
void tellFailure(const std::string& id, GError* error) {
  if (const glib::Error failure{error}) {
    warn(id + " cannot be started: " + failure->message);
  }
}

/// What is typed in the host's terminal, such as Control-C, is not for what it has started.
void leaveSession(gpointer) {
  setsid();
}

void launchProgram(const DesktopEntry& entry) {
  GError* error = nullptr;
  // what an application says belongs neither into the host's output nor keeps it open
  const FileDescriptor null(open("/dev/null", O_RDWR | O_CLOEXEC));
  g_desktop_app_info_launch_uris_as_manager_with_fds(
      entry.info.get(), nullptr, launchContext().get(), G_SPAWN_SEARCH_PATH, leaveSession, nullptr,
      nullptr, nullptr, null.get(), null.get(), null.get(), &error);
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
