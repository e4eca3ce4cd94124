#include "Platform/Linux/Media/RecentPlayer.h"

#include <algorithm>
#include <memory>
#include <tuple>
#include <utility>

#include "Platform/Linux/Media/Mpris.h"
#include "Platform/Linux/Media/Players.h"

namespace tapdeck::media {
namespace {

constexpr int kReplyLimit = 1000;  // milliseconds
constexpr const char* kBusName = "org.freedesktop.DBus";
constexpr const char* kBusPath = "/org/freedesktop/DBus";
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";
constexpr const char* kPlaybackStatus = "PlaybackStatus";
constexpr const char* kPlaying = "Playing";

}  // namespace

RecentPlayer::RecentPlayer() {
  connect();
}

RecentPlayer::~RecentPlayer() {
  g_cancellable_cancel(_lifetime.get());
  disconnect();
}

bool RecentPlayer::send(const char* method) {
  if (_connection != nullptr && g_dbus_connection_is_closed(_connection.get()) != FALSE) {
    disconnect();
  }
  // a session bus may have come since
  if (_connection == nullptr) connect();
  const auto best = std::ranges::max_element(_players, {}, [](const auto& player) {
    const Entry& entry = player.second;
    return std::tuple(entry.status == kPlaying, entry.lastPlayed, entry.status == "Paused");
  });
  if (best == _players.end()) return false;
  g_dbus_connection_call(_connection.get(), best->second.owner.c_str(), mpris::kPath,
                         mpris::kInterface, method, nullptr, nullptr,
                         G_DBUS_CALL_FLAGS_NO_AUTO_START, kReplyLimit, nullptr, nullptr, nullptr);
  return true;
}

void RecentPlayer::connect() {
  if (_isConnecting || !hasBus(G_BUS_TYPE_SESSION)) return;
  _isConnecting = true;
  g_bus_get(G_BUS_TYPE_SESSION, _lifetime.get(), onConnected, this);
}

void RecentPlayer::onConnected(GObject*, GAsyncResult* result, gpointer self) noexcept {
  GError* failure = nullptr;
  glib::Object<GDBusConnection> connection(g_bus_get_finish(result, &failure));
  const glib::Error error(failure);
  if (error != nullptr && g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_CANCELLED) != FALSE) {
    return;  // and `self` is gone
  }
  auto* player = static_cast<RecentPlayer*>(self);
  player->_isConnecting = false;
  if (connection == nullptr) return;
  g_dbus_connection_set_exit_on_close(connection.get(), FALSE);
  player->_connection = std::move(connection);
  player->follow();
}

// The signals first, so that no change falls between the list and them.
void RecentPlayer::follow() {
  _ownerSignal = g_dbus_connection_signal_subscribe(
      _connection.get(), kBusName, kBusName, "NameOwnerChanged", kBusPath, "org.mpris.MediaPlayer2",
      G_DBUS_SIGNAL_FLAGS_MATCH_ARG0_NAMESPACE, onOwnerChanged, this, nullptr);
  _propertiesSignal = g_dbus_connection_signal_subscribe(
      _connection.get(), nullptr, kProperties, "PropertiesChanged", mpris::kPath, mpris::kInterface,
      G_DBUS_SIGNAL_FLAGS_NONE, onPropertiesChanged, this, nullptr);
  callBus("ListNames", nullptr, "(as)", [this](GVariant* reply) {
    const glib::Variant names(g_variant_get_child_value(reply, 0));
    for (gsize place = 0; place < g_variant_n_children(names.get()); ++place) {
      const glib::Variant each(g_variant_get_child_value(names.get(), place));
      const std::string name = g_variant_get_string(each.get(), nullptr);
      if (!isPlayer(name)) continue;
      callBus("GetNameOwner", g_variant_new("(s)", name.c_str()), "(s)",
              [this, name](GVariant* owner) {
                const char* unique = nullptr;
                g_variant_get(owner, "(&s)", &unique);
                add(name, unique);
              });
    }
  });
}

void RecentPlayer::disconnect() {
  _players.clear();
  if (_connection == nullptr) return;
  g_dbus_connection_signal_unsubscribe(_connection.get(), _ownerSignal);
  g_dbus_connection_signal_unsubscribe(_connection.get(), _propertiesSignal);
  _connection.reset();
}

void RecentPlayer::onOwnerChanged(GDBusConnection*, const char*, const char*, const char*,
                                  const char*, GVariant* arguments, gpointer self) noexcept {
  auto* player = static_cast<RecentPlayer*>(self);
  const char* name = nullptr;
  const char* newOwner = nullptr;
  g_variant_get(arguments, "(&s&s&s)", &name, nullptr, &newOwner);
  if (!isPlayer(name)) return;
  player->_players.erase(name);
  if (*newOwner != '\0') player->add(name, newOwner);
}

void RecentPlayer::onPropertiesChanged(GDBusConnection*, const char* sender, const char*,
                                       const char*, const char*, GVariant* arguments,
                                       gpointer self) noexcept {
  // any program may send the signal, with whatever it likes in it
  if (g_variant_is_of_type(arguments, G_VARIANT_TYPE("(sa{sv}as)")) == FALSE) return;
  const glib::Variant changed(g_variant_get_child_value(arguments, 1));
  const char* status = nullptr;
  if (g_variant_lookup(changed.get(), kPlaybackStatus, "&s", &status) != FALSE) {
    static_cast<RecentPlayer*>(self)->note(sender, status);
  }
}

void RecentPlayer::add(const std::string& name, const std::string& owner) {
  Entry& entry = _players[name];
  if (entry.owner == owner) return;
  entry = {.owner = owner, .status = {}};
  call(owner.c_str(), mpris::kPath, kProperties, "Get",
       g_variant_new("(ss)", mpris::kInterface, kPlaybackStatus), "(v)",
       [this, owner](GVariant* reply) {
         GVariant* inner = nullptr;
         g_variant_get(reply, "(v)", &inner);
         const glib::Variant status(inner);
         if (g_variant_is_of_type(status.get(), G_VARIANT_TYPE_STRING) == FALSE) return;
         note(owner, g_variant_get_string(status.get(), nullptr));
       });
}

void RecentPlayer::note(const std::string& owner, const std::string& status) {
  for (auto& [name, entry] : _players) {
    if (entry.owner != owner || entry.status == status) continue;
    if (status == kPlaying || entry.status == kPlaying) entry.lastPlayed = ++_changes;
    entry.status = status;
  }
}

void RecentPlayer::callBus(const char* method, GVariant* arguments, const char* replyType,
                           Receiver receive) {
  call(kBusName, kBusPath, kBusName, method, arguments, replyType, std::move(receive));
}

void RecentPlayer::call(const char* name, const char* path, const char* interface,
                        const char* method, GVariant* arguments, const char* replyType,
                        Receiver receive) {
  g_dbus_connection_call(_connection.get(), name, path, interface, method, arguments,
                         G_VARIANT_TYPE(replyType), G_DBUS_CALL_FLAGS_NO_AUTO_START, kReplyLimit,
                         _lifetime.get(), onReply, new Receiver(std::move(receive)));
}

void RecentPlayer::onReply(GObject* connection, GAsyncResult* result, gpointer receiver) noexcept {
  const std::unique_ptr<Receiver> receive(static_cast<Receiver*>(receiver));
  const glib::Variant reply(
      g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, nullptr));
  if (reply != nullptr) (*receive)(reply.get());
}

}  // namespace tapdeck::media
