#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tapdeck::standin {

/// "http://HOST:PORT" for each address at which an engine that listens on `address` (an IP literal)
/// is reached: that address itself, or, when it is the unspecified one, those of the machine's
/// running interfaces of that family, the one that leads out of the computer first, loopback last.
std::vector<std::string> originsFor(const std::string& address, uint16_t port);

}  // namespace tapdeck::standin
