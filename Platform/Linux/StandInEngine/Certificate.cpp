#include "Platform/Linux/StandInEngine/Certificate.h"

#include <gnutls/gnutls.h>
#include <gnutls/x509.h>

#include <ctime>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <type_traits>

#include "Platform/Linux/StandInEngine/Access.h"

namespace tapdeck::standin {
namespace {

using glib::Object;

constexpr int64_t kValidSeconds = int64_t{10} * 365 * 24 * 3600;
constexpr std::string_view kName = "Tapdeck";
constexpr unsigned kVersion = 3;
constexpr size_t kSerialBytes = 8;

struct Release {
  void operator()(gnutls_x509_privkey_t key) const { gnutls_x509_privkey_deinit(key); }
  void operator()(gnutls_x509_crt_t certificate) const { gnutls_x509_crt_deinit(certificate); }
};
template <typename Handle>
using Owned = std::unique_ptr<std::remove_pointer_t<Handle>, Release>;

void check(int status) {
  if (status < 0) {
    throw std::runtime_error(std::string("No certificate could be made: ") +
                             gnutls_strerror(status));
  }
}

std::string takeText(gnutls_datum_t data) {
  std::string text(reinterpret_cast<const char*>(data.data), data.size);
  gnutls_memset(data.data, 0, data.size);
  gnutls_free(data.data);
  return text;
}

Owned<gnutls_x509_privkey_t> newKey() {
  gnutls_x509_privkey_t key = nullptr;
  check(gnutls_x509_privkey_init(&key));
  Owned<gnutls_x509_privkey_t> owner(key);
  check(gnutls_x509_privkey_generate(key, GNUTLS_PK_ECDSA,
                                     GNUTLS_CURVE_TO_BITS(GNUTLS_ECC_CURVE_SECP256R1), 0));
  return owner;
}

/// Certificate and key, in PEM.
std::string newPem() {
  const auto key = newKey();
  gnutls_x509_crt_t certificate = nullptr;
  check(gnutls_x509_crt_init(&certificate));
  const Owned<gnutls_x509_crt_t> owner(certificate);
  const std::string serial = "01" + randomDigits(kSerialBytes);
  const std::time_t now = std::time(nullptr);
  check(gnutls_x509_crt_set_version(certificate, kVersion));
  check(gnutls_x509_crt_set_serial(certificate, serial.data(), kSerialBytes));
  check(gnutls_x509_crt_set_dn_by_oid(certificate, GNUTLS_OID_X520_COMMON_NAME, 0, kName.data(),
                                      static_cast<unsigned>(kName.size())));
  check(gnutls_x509_crt_set_activation_time(certificate, now));
  check(gnutls_x509_crt_set_expiration_time(certificate, now + kValidSeconds));
  check(gnutls_x509_crt_set_key_usage(certificate, GNUTLS_KEY_DIGITAL_SIGNATURE));
  check(gnutls_x509_crt_set_key_purpose_oid(certificate, GNUTLS_KP_TLS_WWW_SERVER, 0));
  check(gnutls_x509_crt_set_key(certificate, key.get()));
  check(gnutls_x509_crt_sign2(certificate, certificate, key.get(), GNUTLS_DIG_SHA256, 0));
  gnutls_datum_t publicPart{};
  check(gnutls_x509_crt_export2(certificate, GNUTLS_X509_FMT_PEM, &publicPart));
  std::string pem = takeText(publicPart);
  gnutls_datum_t secretPart{};
  check(gnutls_x509_privkey_export2_pkcs8(key.get(), GNUTLS_X509_FMT_PEM, nullptr,
                                          GNUTLS_PKCS_PLAIN, &secretPart));
  return pem + takeText(secretPart);
}

void keep(const std::string& path, const std::string& pem) {
  g_mkdir_with_parents(std::filesystem::path(path).parent_path().c_str(), 0700);
  GError* problem = nullptr;
  g_file_set_contents_full(path.c_str(), pem.data(), static_cast<gssize>(pem.size()),
                           G_FILE_SET_CONTENTS_CONSISTENT, 0600, &problem);
  const glib::Error error(problem);
  if (error) throw std::runtime_error(error->message);
}

}  // namespace

Object<GTlsCertificate> ownCertificate(const std::string& path) {
  const std::string file =
      path.empty() ? std::string(g_get_user_data_dir()) + "/tapdeck/certificate.pem" : path;
  std::error_code unreadable;
  if (!std::filesystem::exists(file, unreadable)) keep(file, newPem());
  GError* problem = nullptr;
  Object<GTlsCertificate> certificate(g_tls_certificate_new_from_file(file.c_str(), &problem));
  const glib::Error error(problem);
  if (!certificate) {
    throw std::runtime_error("The certificate in " + file + " cannot be used (" + error->message +
                             "). Remove the file to have a new one made.");
  }
  return certificate;
}

std::string fingerprintOf(GTlsCertificate* certificate) {
  GByteArray* encoded = nullptr;
  g_object_get(certificate, "certificate", &encoded, nullptr);
  const glib::ByteArray owned(encoded);
  if (encoded == nullptr) return "";
  const glib::Text digits(
      g_compute_checksum_for_data(G_CHECKSUM_SHA256, encoded->data, encoded->len));
  std::string fingerprint;
  for (const char* digit = digits.get(); *digit != '\0'; ++digit) {
    const size_t place = static_cast<size_t>(digit - digits.get());
    if (place > 0 && place % 2 == 0) fingerprint += ':';
    fingerprint += g_ascii_toupper(*digit);
  }
  return fingerprint;
}

}  // namespace tapdeck::standin
