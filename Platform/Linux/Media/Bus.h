#pragma once

#include <gio/gio.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::media {

/// A cancellable that is cancelled when the time is up, unless this has ended before.
class Deadline {
 public:
  explicit Deadline(std::chrono::milliseconds atMost);

  GCancellable* cancellable() const { return _cancellable.get(); }

 private:
  glib::Object<GCancellable> _cancellable{g_cancellable_new()};
  std::mutex _mutex;
  std::condition_variable_any _ended;
  std::jthread _thread;
};

/// Whether there is such a bus to connect to. To check first, because GIO starts a session bus
/// where there is none.
bool hasBus(GBusType type);

/// One of the machine's two message buses. Any thread; every call is bounded in time.
class Bus {
 public:
  /// Absent when there is no such bus or it does not answer. None is started.
  static std::optional<Bus> connect(GBusType type);

  /// Owned by this.
  GDBusConnection* connection() const { return _connection.get(); }
  /// Whether the other side has gone.
  bool isClosed() const { return g_dbus_connection_is_closed(_connection.get()) != FALSE; }

  /// The names on the bus, in order; none when it does not answer.
  std::vector<std::string> names() const;

  /// Calls a method and waits for its reply, a tuple of this type, for at most a second. Takes the
  /// arguments. Throws MediaError: notRunning, timedOut or failed.
  glib::Variant call(const std::string& name, const char* path, const char* interface,
                     const char* method, GVariant* arguments, const char* replyType) const;

  /// Reads one property of text from each of the names, all at the same time; empty for those that
  /// do not answer within a quarter of a second.
  std::vector<std::string> textPropertyOfEach(const std::vector<std::string>& names,
                                              const char* path, const char* interface,
                                              const char* property) const;

 private:
  explicit Bus(GDBusConnection* connection) : _connection(connection, g_object_unref) {}

  std::shared_ptr<GDBusConnection> _connection;
};

}  // namespace tapdeck::media
