#include "Platform/Linux/StandInEngine/Addresses.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

#include <algorithm>
#include <memory>

#include "Platform/Linux/StandInEngine/Access.h"
#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::standin {
namespace {

using glib::Object;

struct FreeInterfaces {
  void operator()(ifaddrs* list) const { freeifaddrs(list); }
};

Object<GInetAddress> addressOf(const ifaddrs& entry) {
  if (entry.ifa_addr == nullptr || (entry.ifa_flags & IFF_UP) == 0) return nullptr;
  const int family = entry.ifa_addr->sa_family;
  if (family != AF_INET && family != AF_INET6) return nullptr;
  const size_t size = family == AF_INET ? sizeof(sockaddr_in) : sizeof(sockaddr_in6);
  const Object<GSocketAddress> socketAddress(
      g_socket_address_new_from_native(entry.ifa_addr, size));
  if (!socketAddress) return nullptr;
  GInetAddress* address =
      g_inet_socket_address_get_address(G_INET_SOCKET_ADDRESS(socketAddress.get()));
  return Object<GInetAddress>(G_INET_ADDRESS(g_object_ref(address)));
}

/// Link-local addresses are left out: a browser cannot be told their interface.
std::vector<Object<GInetAddress>> networkAddresses(GSocketFamily family) {
  ifaddrs* list = nullptr;
  if (getifaddrs(&list) != 0) return {};
  const std::unique_ptr<ifaddrs, FreeInterfaces> owner(list);
  std::vector<Object<GInetAddress>> addresses;
  for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) {
    Object<GInetAddress> address = addressOf(*entry);
    if (address && g_inet_address_get_family(address.get()) == family &&
        !g_inet_address_get_is_loopback(address.get()) &&
        !g_inet_address_get_is_link_local(address.get())) {
      addresses.push_back(std::move(address));
    }
  }
  return addresses;
}

/// The address that packets to the rest of the world leave from; null without a way there. Nothing
/// is sent: a datagram socket only looks up its route.
Object<GInetAddress> routedAddress(GSocketFamily family) {
  const Object<GSocketAddress> elsewhere(g_inet_socket_address_new_from_string(
      family == G_SOCKET_FAMILY_IPV4 ? "192.0.2.1" : "2001:db8::1", 9));
  const Object<GSocket> socket(
      g_socket_new(family, G_SOCKET_TYPE_DATAGRAM, G_SOCKET_PROTOCOL_UDP, nullptr));
  if (!socket || !g_socket_connect(socket.get(), elsewhere.get(), nullptr, nullptr)) return nullptr;
  const Object<GSocketAddress> own(g_socket_get_local_address(socket.get(), nullptr));
  if (!own) return nullptr;
  return Object<GInetAddress>(G_INET_ADDRESS(
      g_object_ref(g_inet_socket_address_get_address(G_INET_SOCKET_ADDRESS(own.get())))));
}

/// Virtual machines' and containers' networks are reached by no phone: what leads to the rest of
/// the world goes first.
void putRoutedFirst(std::vector<Object<GInetAddress>>& addresses, GSocketFamily family) {
  const Object<GInetAddress> routed = routedAddress(family);
  if (!routed) return;
  std::stable_partition(addresses.begin(), addresses.end(), [&routed](const auto& each) {
    return g_inet_address_equal(each.get(), routed.get()) != FALSE;
  });
}

}  // namespace

bool isEncryptedAt(GInetAddress* local) {
  const Object<GInetAddress> loopback(
      g_inet_address_new_loopback(g_inet_address_get_family(local)));
  return g_inet_address_equal(local, loopback.get()) == FALSE;
}

std::vector<std::string> originsFor(const std::string& address, uint16_t port, bool isEncrypted) {
  Object<GInetAddress> own(g_inet_address_new_from_string(address.c_str()));
  if (!own) return {};
  std::vector<Object<GInetAddress>> addresses;
  if (g_inet_address_get_is_any(own.get())) {
    const GSocketFamily family = g_inet_address_get_family(own.get());
    addresses = networkAddresses(family);
    putRoutedFirst(addresses, family);
    own.reset(g_inet_address_new_loopback(family));
  }
  addresses.push_back(std::move(own));
  std::vector<std::string> origins;
  origins.reserve(addresses.size());
  for (const auto& each : addresses) {
    const char* scheme = isEncrypted && isEncryptedAt(each.get()) ? "https://" : "http://";
    origins.push_back(scheme + authorityOf(each.get(), port));
  }
  return origins;
}

}  // namespace tapdeck::standin
