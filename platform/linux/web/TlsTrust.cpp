#include "TlsTrust.h"

#include <cstdlib>

namespace vemba::linux_platform {
namespace {

constexpr const char* kBundleVariable = "SSL_CERT_FILE";
// The identity's port plays no part in verification; any valid port will do.
constexpr guint16 kIdentityPort = 443;

}  // namespace

std::optional<std::string> trustedBundlePath() {
  const char* path = std::getenv(kBundleVariable);
  if (path == nullptr || *path == '\0') {
    return std::nullopt;
  }
  return std::string(path);
}

bool verifiesAgainstBundle(GTlsCertificate* certificate, const std::string& host,
                           const std::string& bundlePath) {
  if (certificate == nullptr || host.empty()) {
    return false;
  }
  GError* error = nullptr;
  GTlsDatabase* database = g_tls_file_database_new(bundlePath.c_str(), &error);
  if (database == nullptr) {
    g_clear_error(&error);
    return false;
  }
  GSocketConnectable* identity = g_network_address_new(host.c_str(), kIdentityPort);
  const GTlsCertificateFlags flags =
      g_tls_database_verify_chain(database, certificate, G_TLS_DATABASE_PURPOSE_AUTHENTICATE_SERVER,
                                  identity, nullptr, G_TLS_DATABASE_VERIFY_NONE, nullptr, &error);
  const bool verified = error == nullptr && flags == 0;
  g_clear_error(&error);
  g_object_unref(identity);
  g_object_unref(database);
  return verified;
}

}  // namespace vemba::linux_platform
