#pragma once

#include <gio/gio.h>

#include <cstdint>
#include <string>
#include <vector>

namespace tapdeck::standin {

/// Whether connections that arrive at this local address are encrypted while encryption is on: all
/// but those to 127.0.0.1 and ::1, which do not leave the computer.
bool isEncryptedAt(GInetAddress* local);

/// "http://HOST:PORT" (https where it is encrypted) for each address at which an engine that
/// listens on `address` (an IP literal) is reached: that address itself, or, when it is the
/// unspecified one, those of the machine's running interfaces of that family, the one that leads
/// out of the computer first, loopback last.
std::vector<std::string> originsFor(const std::string& address, uint16_t port, bool isEncrypted);

}  // namespace tapdeck::standin
