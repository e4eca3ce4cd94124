#include "Platform/Linux/Media/Power.h"

#include <algorithm>
#include <string>

#include "Platform/Linux/Media/Bus.h"
#include "Platform/Linux/Media/MediaError.h"
#include "Platform/Linux/Support/Diagnostics.h"

namespace tapdeck::media {
namespace {

constexpr const char* kLoginManager = "org.freedesktop.login1";
constexpr int kReplyLimit = 5 * 60 * 1000;  // in milliseconds

struct Request {
  const char* method;
  const char* verb;
};
constexpr Request kSleep{"Suspend", "sleep"};
constexpr Request kShutDown{"PowerOff", "shut down"};
constexpr Request kRestart{"Reboot", "restart"};

size_t pending = 0;

void finish(GObject* connection, GAsyncResult* result, gpointer data) noexcept {
  --pending;
  GError* error = nullptr;
  const glib::Variant reply(
      g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, &error));
  if (reply != nullptr) return;
  const glib::Error failure(error);
  g_dbus_error_strip_remote_error(failure.get());
  const std::string verb = static_cast<const Request*>(data)->verb;
  warn("the machine cannot " + verb + ": " + failure->message);
}

}  // namespace

void requestPower(PowerAction action) {
  const Request& request = action == PowerAction::sleep      ? kSleep
                           : action == PowerAction::shutDown ? kShutDown
                                                             : kRestart;
  const auto bus = Bus::connect(G_BUS_TYPE_SYSTEM);
  if (!bus || !std::ranges::binary_search(bus->names(), kLoginManager)) {
    throw MediaError(MediaError::Kind::notRunning, "There is no login manager.");
  }
  // the user may be asked for a password
  constexpr gboolean kIsInteractive = TRUE;
  ++pending;
  // GIO keeps the connection until the reply comes
  g_dbus_connection_call(bus->connection(), kLoginManager, "/org/freedesktop/login1",
                         "org.freedesktop.login1.Manager", request.method,
                         g_variant_new("(b)", kIsInteractive), nullptr,
                         G_DBUS_CALL_FLAGS_NO_AUTO_START, kReplyLimit, nullptr, finish,
                         const_cast<Request*>(&request));
}

void finishPowerRequests() {
  while (pending > 0) g_main_context_iteration(nullptr, TRUE);
}

}  // namespace tapdeck::media
