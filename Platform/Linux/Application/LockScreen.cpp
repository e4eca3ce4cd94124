#include <gio/gio.h>
#include <unistd.h>

#include <iterator>

#include "Platform/Linux/Media/Bus.h"
#include "Platform/Linux/Support/Diagnostics.h"

namespace tapdeck::platform {
namespace {

using glib::Object;
using glib::Variant;

constexpr int kReplyMilliseconds = 3000;

/// One way to have the screen locked.
struct Locker {
  GBusType bus;
  const char* name;
  const char* path;
  const char* interface;
};

// The login manager tells whichever locker the desktop has. The session is named by the path that
// stands for the caller's own, which it also knows for what runs outside of every session.
constexpr Locker kLockers[] = {
    {G_BUS_TYPE_SYSTEM, "org.freedesktop.login1", "/org/freedesktop/login1/session/auto",
     "org.freedesktop.login1.Session"},
    {G_BUS_TYPE_SESSION, "org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver",
     "org.freedesktop.ScreenSaver"},
    {G_BUS_TYPE_SESSION, "org.gnome.ScreenSaver", "/org/gnome/ScreenSaver",
     "org.gnome.ScreenSaver"},
    {G_BUS_TYPE_SESSION, "org.mate.ScreenSaver", "/org/mate/ScreenSaver", "org.mate.ScreenSaver"},
    {G_BUS_TYPE_SESSION, "org.xfce.ScreenSaver", "/org/xfce/ScreenSaver", "org.xfce.ScreenSaver"},
    {G_BUS_TYPE_SESSION, "org.cinnamon.ScreenSaver", "/org/cinnamon/ScreenSaver",
     "org.cinnamon.ScreenSaver"},
};

/// Has the screen locked by this one or, where that fails, by one after it.
void tryLock(const Locker* locker);

/// Tries the next one unless this has locked.
void finish(GObject* connection, GAsyncResult* result, gpointer data) noexcept {
  const auto* locker = static_cast<const Locker*>(data);
  const Variant reply(
      g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, nullptr));
  if (reply == nullptr) tryLock(std::next(locker));
}

void callLock(GObject*, GAsyncResult* result, gpointer data) noexcept {
  const auto* locker = static_cast<const Locker*>(data);
  const Object<GDBusConnection> connection(g_bus_get_finish(result, nullptr));
  if (connection == nullptr) {
    tryLock(std::next(locker));
    return;
  }
  g_dbus_connection_set_exit_on_close(connection.get(), FALSE);
  g_dbus_connection_call(connection.get(), locker->name, locker->path, locker->interface, "Lock",
                         nullptr, nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, kReplyMilliseconds,
                         nullptr, finish, data);
}

void tryLock(const Locker* locker) {
  while (locker != std::end(kLockers) && !media::hasBus(locker->bus)) ++locker;
  if (locker == std::end(kLockers)) {
    warn("nothing on this desktop locks the screen.");
    return;
  }
  g_bus_get(locker->bus, nullptr, callLock, const_cast<Locker*>(locker));
}

}  // namespace
}  // namespace tapdeck::platform

/// Locks the screen, by the name that this has on the Mac, where the host looks it up at run time.
/// Returns at once, and the outcome is not reported; main thread only.
extern "C" int SACLockScreenImmediate();
extern "C" int SACLockScreenImmediate() {
  tapdeck::platform::tryLock(tapdeck::platform::kLockers);
  return 0;
}
