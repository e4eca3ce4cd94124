#pragma once

#include <gio/gio.h>

#include <chrono>
#include <list>
#include <memory>
#include <string_view>

#include "Platform/Linux/StandInEngine/RequestLine.h"
#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::standin {

/// The connections that were taken in and carry no WebSocket (yet): only so many, and each for so
/// long. Of too many the oldest ends. Main thread only.
class PendingConnections {
 public:
  static constexpr size_t kMaxCount = 64;

  explicit PendingConnections(std::chrono::milliseconds limit) : _limit(limit) {}
  PendingConnections(const PendingConnections&) = delete;
  PendingConnections& operator=(const PendingConnections&) = delete;
  ~PendingConnections();

  /// The connection goes off the list by itself when its last owner lets go of it.
  void add(GSocketConnection* connection, GSocketAddress* remote,
           std::shared_ptr<const RequestLine> requestLine);
  /// What the connection from there asks for, as it was sent; empty when it is not on the list.
  std::string_view requestTarget(GSocketAddress* remote) const;
  /// The connection from there has become a WebSocket: its socket, which is bounded no longer; null
  /// when it is not on the list.
  glib::Object<GSocket> take(GSocketAddress* remote);

 private:
  struct Entry {
    PendingConnections* list;
    /// Watched, not owned.
    GSocketConnection* connection;
    glib::Object<GSocket> socket;
    glib::Object<GSocketAddress> remote;
    std::shared_ptr<const RequestLine> requestLine;
    glib::Source deadline;
    /// Its end is under way.
    bool hasEnded;
  };
  static void gone(gpointer entry, GObject* connection) noexcept;
  static void end(Entry& entry);
  size_t open() const;
  void remove(const Entry& entry);

  std::chrono::milliseconds _limit;
  /// The oldest first.
  std::list<Entry> _entries;
};

}  // namespace tapdeck::standin
