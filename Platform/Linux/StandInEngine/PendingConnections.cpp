#include "Platform/Linux/StandInEngine/PendingConnections.h"

#include <algorithm>
#include <utility>

namespace tapdeck::standin {

using glib::Object;

PendingConnections::~PendingConnections() {
  for (Entry& entry : _entries) g_object_weak_unref(G_OBJECT(entry.connection), gone, &entry);
}

void PendingConnections::add(GSocketConnection* connection, GSocketAddress* remote,
                             std::shared_ptr<const RequestLine> requestLine) {
  if (open() >= kMaxCount) {
    end(*std::find_if(_entries.begin(), _entries.end(),
                      [](const Entry& each) { return !each.hasEnded; }));
  }
  GSocket* socket = g_socket_connection_get_socket(connection);
  Entry& entry = _entries.emplace_back(
      Entry{this, connection, Object<GSocket>(G_SOCKET(g_object_ref(socket))),
            Object<GSocketAddress>(G_SOCKET_ADDRESS(g_object_ref(remote))), std::move(requestLine),
            glib::Source(g_timeout_source_new(static_cast<guint>(_limit.count()))), false});
  g_object_weak_ref(G_OBJECT(connection), gone, &entry);
  const GSourceFunc late = [](gpointer data) noexcept -> gboolean {
    end(*static_cast<Entry*>(data));
    return G_SOURCE_REMOVE;
  };
  g_source_set_callback(entry.deadline.get(), late, &entry, nullptr);
  g_source_attach(entry.deadline.get(), nullptr);
}

std::string_view PendingConnections::requestTarget(GSocketAddress* remote) const {
  const auto entry = std::find_if(_entries.begin(), _entries.end(), [remote](const Entry& each) {
    return each.remote.get() == remote;
  });
  return entry != _entries.end() ? entry->requestLine->target() : std::string_view();
}

Object<GSocket> PendingConnections::take(GSocketAddress* remote) {
  const auto entry = std::find_if(_entries.begin(), _entries.end(), [remote](const Entry& each) {
    return each.remote.get() == remote;
  });
  if (entry == _entries.end()) return nullptr;
  g_object_weak_unref(G_OBJECT(entry->connection), gone, &*entry);
  Object<GSocket> socket = std::move(entry->socket);
  _entries.erase(entry);
  return socket;
}

/// The HTTP server reads the end of the stream then, and lets go of the connection. It must not be
/// closed under the server, whose main loop watches the descriptor.
void PendingConnections::end(Entry& entry) {
  entry.hasEnded = true;
  g_socket_shutdown(entry.socket.get(), TRUE, TRUE, nullptr);
}

size_t PendingConnections::open() const {
  return static_cast<size_t>(std::count_if(_entries.begin(), _entries.end(),
                                           [](const Entry& each) { return !each.hasEnded; }));
}

void PendingConnections::gone(gpointer entry, GObject*) noexcept {
  const auto* own = static_cast<const Entry*>(entry);
  own->list->remove(*own);
}

void PendingConnections::remove(const Entry& entry) {
  _entries.remove_if([&entry](const Entry& each) { return &each == &entry; });
}

}  // namespace tapdeck::standin
