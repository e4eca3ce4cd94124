#pragma once

#include <gio/gio.h>

#include <string>

#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::standin {

/// This computer's certificate with its key, signed by itself: made by GnuTLS at first use and kept
/// in a file that only its owner can read. Without a path: certificate.pem in the user's data
/// folder for Tapdeck. Throws std::runtime_error, with a message for people.
glib::Object<GTlsCertificate> ownCertificate(const std::string& path);

/// The certificate's SHA-256 fingerprint as browsers show it, "AB:CD:...".
std::string fingerprintOf(GTlsCertificate* certificate);

}  // namespace tapdeck::standin
