#include "Platform/Linux/StandInEngine/Listener.h"

#include <netinet/in.h>

#include <string>
#include <utility>

#include "Platform/Linux/Support/Diagnostics.h"

namespace tapdeck::standin {
namespace {

using glib::Object;

constexpr int kBacklog = 128;
/// So many are taken in before the main loop turns to others.
constexpr int kAcceptedPerTurn = 16;
constexpr guint kPauseMilliseconds = 1000;

}  // namespace

std::unique_ptr<Listener> Listener::open(GSocketAddress* address, Accepted accepted,
                                         GError** error) {
  const GSocketFamily family = g_socket_address_get_family(address);
  Object<GSocket> socket(g_socket_new(family, G_SOCKET_TYPE_STREAM, G_SOCKET_PROTOCOL_TCP, error));
  if (!socket) return nullptr;
  g_socket_set_blocking(socket.get(), FALSE);
  g_socket_set_listen_backlog(socket.get(), kBacklog);
  if (family == G_SOCKET_FAMILY_IPV6) {
    g_socket_set_option(socket.get(), IPPROTO_IPV6, IPV6_V6ONLY, 1, nullptr);
  }
  if (!g_socket_bind(socket.get(), address, TRUE, error)) return nullptr;
  if (!g_socket_listen(socket.get(), error)) return nullptr;
  return std::unique_ptr<Listener>(new Listener(std::move(socket), std::move(accepted)));
}

Listener::Listener(Object<GSocket> socket, Accepted accepted)
    : _socket(std::move(socket)), _accepted(std::make_shared<const Accepted>(std::move(accepted))) {
  watch();
}

uint16_t Listener::port() const {
  const Object<GSocketAddress> address(g_socket_get_local_address(_socket.get(), nullptr));
  return address ? g_inet_socket_address_get_port(G_INET_SOCKET_ADDRESS(address.get())) : 0;
}

void Listener::watch() {
  _source.reset(g_socket_create_source(_socket.get(), G_IO_IN, nullptr));
  const GSocketSourceFunc callback = [](GSocket*, GIOCondition,
                                        gpointer self) noexcept -> gboolean {
    static_cast<Listener*>(self)->acceptSome();
    return G_SOURCE_CONTINUE;
  };
  g_source_set_callback(_source.get(), G_SOURCE_FUNC(callback), this, nullptr);
  g_source_attach(_source.get(), nullptr);
}

void Listener::watchAgainLater() {
  _source.reset(g_timeout_source_new(kPauseMilliseconds));
  const GSourceFunc callback = [](gpointer self) noexcept -> gboolean {
    static_cast<Listener*>(self)->watch();
    return G_SOURCE_REMOVE;
  };
  g_source_set_callback(_source.get(), callback, this, nullptr);
  g_source_attach(_source.get(), nullptr);
}

void Listener::acceptSome() {
  const auto accepted = _accepted;
  const std::weak_ptr<const Accepted> stillListens = accepted;
  for (int i = 0; i < kAcceptedPerTurn; ++i) {
    GError* problem = nullptr;
    const Object<GSocket> socket(g_socket_accept(_socket.get(), nullptr, &problem));
    const glib::Error error(problem);
    if (!socket) {
      if (g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_WOULD_BLOCK)) return;
      if (!std::exchange(_hasFailed, true)) {
        warn(std::string("no connection can be taken in at the moment: ") + error->message);
      }
      watchAgainLater();
      return;
    }
    if (std::exchange(_hasFailed, false)) {
      warn("connections are taken in again.");
    }
    (*accepted)(
        Object<GSocketConnection>(g_socket_connection_factory_create_connection(socket.get())));
    if (stillListens.use_count() < 2) return;
  }
}

}  // namespace tapdeck::standin
