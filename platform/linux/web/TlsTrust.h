// Which server certificates a web view trusts beyond WebKit's own store: those that the CA bundle
// named by SSL_CERT_FILE vouches for, the same bundle the HTTP client trusts. Nothing here
// relaxes a check: a certificate is trusted only when its whole chain verifies for the host with
// no problem at all. Functions of their arguments and the environment; any thread.
#pragma once

#include <gio/gio.h>

#include <optional>
#include <string>

namespace vemba::linux_platform {

// The CA bundle named by SSL_CERT_FILE, read at each call; absent when unset or empty.
std::optional<std::string> trustedBundlePath();

// True when `certificate` (with the issuers it carries) verifies as a server certificate for
// `host` against the certificates in the PEM file `bundlePath`; false for any problem, an
// unreadable bundle included.
bool verifiesAgainstBundle(GTlsCertificate* certificate, const std::string& host,
                           const std::string& bundlePath);

}  // namespace vemba::linux_platform
