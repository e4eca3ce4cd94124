#pragma once

#include <gio/gio.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "Platform/Linux/Media/Bus.h"

namespace tapdeck::media {

/// The media player (MPRIS 2) that plays, else the one that played last. Follows all players by
/// what they announce on the session bus, of which none is started; no call waits for anything.
/// Main thread, whose default main context has to run.
class RecentPlayer {
 public:
  RecentPlayer();
  ~RecentPlayer();
  RecentPlayer(const RecentPlayer&) = delete;
  RecentPlayer& operator=(const RecentPlayer&) = delete;

  /// Sends it a method of its interface without arguments, such as "PlayPause". False when there is
  /// no player.
  bool send(const char* method);

 private:
  struct Entry {
    /// The unique name of its connection.
    std::string owner;
    /// PlaybackStatus; empty until it is known.
    std::string status;
    /// When it last began or ceased to play, by a count of all such changes; 0 for never.
    uint64_t lastPlayed = 0;
  };
  using Receiver = std::function<void(GVariant* reply)>;

  static void onConnected(GObject*, GAsyncResult* result, gpointer self) noexcept;
  static void onOwnerChanged(GDBusConnection*, const char*, const char*, const char*, const char*,
                             GVariant* arguments, gpointer self) noexcept;
  static void onPropertiesChanged(GDBusConnection*, const char* sender, const char*, const char*,
                                  const char*, GVariant* arguments, gpointer self) noexcept;
  static void onReply(GObject* connection, GAsyncResult* result, gpointer receiver) noexcept;

  void connect();
  void follow();
  void disconnect();
  /// Without a reply within a second `receive` is not called, nor after the end of this.
  void call(const char* name, const char* path, const char* interface, const char* method,
            GVariant* arguments, const char* replyType, Receiver receive);
  void callBus(const char* method, GVariant* arguments, const char* replyType, Receiver receive);
  void add(const std::string& name, const std::string& owner);
  void note(const std::string& owner, const std::string& status);

  glib::Object<GCancellable> _lifetime{g_cancellable_new()};
  glib::Object<GDBusConnection> _connection;
  bool _isConnecting = false;
  guint _ownerSignal = 0;
  guint _propertiesSignal = 0;
  /// By the well-known name.
  std::map<std::string, Entry> _players;
  uint64_t _changes = 0;
};

}  // namespace tapdeck::media
