#pragma once

#include <gio/gio.h>

#include <optional>
#include <string>
#include <string_view>

namespace tapdeck::standin {

/// Who may talk to the engine. A page of another origin can make a browser send requests here, and
/// by a name of its own that resolves to our address even read the answers (DNS rebinding); the
/// Host and Origin checks keep it out, the token keeps out everybody who has not seen the address.

/// So many random bytes (at most 256) from the system's generator, as hexadecimal digits.
std::string randomDigits(size_t bytes);

/// Takes equally long wherever the two differ.
bool equalInConstantTime(std::string_view a, std::string_view b);

/// "1.2.3.4:8420" or "[::1]:8420"; a port of 80 is left out, as browsers do.
std::string authorityOf(GInetAddress* address, uint16_t port);

/// Whether a Host header names the address at which the connection arrived: by its IP literal, or
/// as localhost when it is a loopback address.
bool isOwnHost(const char* host, GSocketAddress* local);

/// Whether an Origin header is absent or the origin of our own page at this (own) host, by this
/// scheme ("http" or "https").
bool isOwnOrigin(const char* origin, std::string_view scheme, std::string_view host);

}  // namespace tapdeck::standin
