#include "Platform/Linux/StandInEngine/Access.h"

#include <sys/random.h>

#include <cerrno>
#include <cstdint>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::standin {

std::string randomDigits(size_t size) {
  std::vector<uint8_t> bytes(size);
  ssize_t count;
  do {
    count = getrandom(bytes.data(), bytes.size(), 0);
  } while (count < 0 && errno == EINTR);
  // A request of up to 256 bytes is never cut short.
  if (!std::cmp_equal(count, bytes.size())) {
    throw std::system_error(errno, std::generic_category(), "No random numbers");
  }
  std::string digits;
  for (const uint8_t byte : bytes) {
    digits += "0123456789abcdef"[byte >> 4];
    digits += "0123456789abcdef"[byte & 15];
  }
  return digits;
}

bool equalInConstantTime(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  volatile unsigned difference = 0;
  for (size_t i = 0; i < a.size(); ++i) {
    difference = difference | static_cast<unsigned>(a[i] ^ b[i]);
  }
  return difference == 0;
}

std::string authorityOf(GInetAddress* address, uint16_t port) {
  const glib::Text text(g_inet_address_to_string(address));
  std::string authority = text.get();
  if (g_inet_address_get_family(address) == G_SOCKET_FAMILY_IPV6) authority = "[" + authority + "]";
  return port == 80 ? authority : authority + ":" + std::to_string(port);
}

bool isOwnHost(const char* host, GSocketAddress* local) {
  if (host == nullptr || !G_IS_INET_SOCKET_ADDRESS(local)) return false;
  GInetAddress* address = g_inet_socket_address_get_address(G_INET_SOCKET_ADDRESS(local));
  const uint16_t port = g_inet_socket_address_get_port(G_INET_SOCKET_ADDRESS(local));
  std::string given = host;
  if (port == 80 && given.ends_with(":80")) given.resize(given.size() - 3);
  if (g_ascii_strcasecmp(given.c_str(), authorityOf(address, port).c_str()) == 0) return true;
  const std::string name = port == 80 ? "localhost" : "localhost:" + std::to_string(port);
  return g_inet_address_get_is_loopback(address) &&
         g_ascii_strcasecmp(given.c_str(), name.c_str()) == 0;
}

bool isOwnOrigin(const char* origin, std::string_view scheme, std::string_view host) {
  return origin == nullptr ||
         std::string_view(origin) == std::string(scheme) + "://" + std::string(host);
}

}  // namespace tapdeck::standin
