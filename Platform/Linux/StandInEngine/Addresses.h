#pragma once

#include <gio/gio.h>

#include <cstdint>
#include <string>
#include <vector>

namespace tapdeck::standin {

/// Whether what arrives at this address of ours is encrypted, where the network's connections are:
/// what stays within the computer by its usual address is not.
bool isEncryptedAt(GInetAddress* local);

/// "http://HOST:PORT" (https where it is encrypted) for each address at which an engine that
/// listens on `address` (an IP literal) is reached: that address itself, or, when it is the
/// unspecified one, those of the machine's running interfaces of that family, the one that leads
/// out of the computer first, loopback last.
std::vector<std::string> originsFor(const std::string& address, uint16_t port, bool isEncrypted);

}  // namespace tapdeck::standin
