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

/// The X server's present time. GDK's own is that of the last input to a window of this process,
/// and a window manager leaves a program that was started so long ago in the background.
guint32 serverTime(GdkDisplay* display) {
  GdkWindowAttr attributes{};
  attributes.window_type = GDK_WINDOW_TOPLEVEL;
  attributes.wclass = GDK_INPUT_ONLY;
  attributes.event_mask = GDK_PROPERTY_CHANGE_MASK;
  attributes.width = attributes.height = 1;
  GdkScreen* screen = gdk_display_get_default_screen(display);
  GdkWindow* probe = gdk_window_new(gdk_screen_get_root_window(screen), &attributes, 0);
  const guint32 time = gdk_x11_get_server_time(probe);
  gdk_window_destroy(probe);
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
void warnOfFailure(const std::string& id, GError* error) {
  if (const glib::Error failure{error}) {
    warn(id + " cannot be started: " + failure->message);
  }
}

/// A signal from the host's terminal, such as that of Control-C, shall not reach what it starts.
void leaveSession(gpointer) noexcept {
  setsid();
}

void launchProgram(const DesktopEntry& entry) {
  GError* error = nullptr;
  // else the application would write into the host's output, and keep it open after the host's end
  const FileDescriptor null(open("/dev/null", O_RDWR | O_CLOEXEC));
  g_desktop_app_info_launch_uris_as_manager_with_fds(
      entry.info.get(), nullptr, launchContext().get(), G_SPAWN_SEARCH_PATH, leaveSession, nullptr,
      nullptr, nullptr, null.get(), null.get(), null.get(), &error);
  warnOfFailure(entry.id, error);
}

/// By D-Bus activation, as the Desktop Entry standard has it for "DBusActivatable".
bool isStartedByBus(const DesktopEntry& entry) {
  const std::string name = std::filesystem::path(entry.path).stem();
  return g_desktop_app_info_get_boolean(entry.info.get(), "DBusActivatable") != FALSE &&
         g_dbus_is_interface_name(name.c_str()) != FALSE;
}

void finishLaunch(GObject* info, GAsyncResult* result, gpointer data) noexcept {
  const std::unique_ptr<std::string> id(static_cast<std::string*>(data));
  GError* error = nullptr;
  g_app_info_launch_uris_finish(G_APP_INFO(info), result, &error);
  warnOfFailure(*id, error);
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
