// The table from WebKitGTK's load failures to the seam's navigation errors. Needs no display.
#include "WebErrorMap.h"

#include <gtest/gtest.h>
#include <webkit/webkit.h>

#include "platform/UrlErrorCode.h"

namespace vemba::linux_platform {
namespace {

namespace Code = platform::UrlErrorCode;

constexpr auto kNoFlags = static_cast<GTlsCertificateFlags>(0);

struct Row {
  GQuark domain;
  int code;
  std::string_view expectedDomain;
  int expectedCode;
};

// Refused connections and time-outs reach the ad tests through real WebKit, an unknown root and a
// cancelled response the web view tests. Here: each domain's default, and the codes the retry and
// recovery rules key on, which those tests cannot provoke over loopback.
TEST(WebErrorMapTest, MapsEachFailureClass) {
  const std::string_view url = platform::kUrlErrorDomain;
  const std::string_view webKit = platform::kWebKitErrorDomain;
  const Row rows[] = {
      {WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED, url, Code::cancelled},
      {WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_FAILED, url, Code::unknown},
      // The engine's policy codes stay in the engine's domain, with the engine's numbers.
      {WEBKIT_POLICY_ERROR, WEBKIT_POLICY_ERROR_CANNOT_USE_RESTRICTED_PORT, webKit, 103},
      {G_IO_ERROR, G_IO_ERROR_NETWORK_UNREACHABLE, url, Code::notConnectedToInternet},
      {G_IO_ERROR, G_IO_ERROR_CONNECTION_CLOSED, url, Code::networkConnectionLost},
      {G_IO_ERROR, G_IO_ERROR_PERMISSION_DENIED, url, Code::unknown},
      {G_RESOLVER_ERROR, G_RESOLVER_ERROR_TEMPORARY_FAILURE, url, Code::cannotFindHost},
      {G_RESOLVER_ERROR, G_RESOLVER_ERROR_INTERNAL, url, Code::dnsLookupFailed},
      {G_TLS_ERROR, G_TLS_ERROR_HANDSHAKE, url, Code::secureConnectionFailed},
      // A refused certificate without the flags WebKit reports beforehand.
      {G_TLS_ERROR, G_TLS_ERROR_BAD_CERTIFICATE, url, Code::serverCertificateUntrusted},
      {SOUP_SESSION_ERROR, SOUP_SESSION_ERROR_TOO_MANY_REDIRECTS, url, Code::httpTooManyRedirects},
      {g_quark_from_static_string("vemba-test-unknown-domain"), 7, url, Code::unknown},
  };
  for (const Row& row : rows) {
    const platform::NavigationError error =
        navigationErrorFor(row.domain, row.code, kNoFlags, "https://shop.invalid/pay");
    EXPECT_EQ(error.domain, row.expectedDomain) << g_quark_to_string(row.domain) << " " << row.code;
    EXPECT_EQ(error.code, row.expectedCode) << g_quark_to_string(row.domain) << " " << row.code;
    EXPECT_EQ(error.failingUrl, "https://shop.invalid/pay");
  }
  // A cancellation after a refused certificate is the refusal.
  EXPECT_EQ(navigationErrorFor(WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED,
                               G_TLS_CERTIFICATE_UNKNOWN_CA, "https://shop.invalid/pay")
                .code,
            Code::serverCertificateHasUnknownRoot);
  // An error of no known domain ends a redirect loop only once the engine's limit is reached;
  // without a failing URL, none is handed on.
  const GQuark none = 0;
  const platform::NavigationError loop =
      navigationErrorFor(none, 0, kNoFlags, "", kEngineRedirectLimit);
  EXPECT_EQ(loop.code, Code::httpTooManyRedirects);
  EXPECT_FALSE(loop.failingUrl);
  EXPECT_EQ(navigationErrorFor(none, 0, kNoFlags, nullptr, kEngineRedirectLimit - 1),
            (platform::NavigationError{std::string(platform::kUrlErrorDomain), Code::unknown,
                                       std::nullopt}));
}

TEST(WebErrorMapTest, CertificateProblemsInOrderOfGravity) {
  const struct {
    unsigned flags;
    int expected;
  } rows[] = {
      {G_TLS_CERTIFICATE_UNKNOWN_CA | G_TLS_CERTIFICATE_EXPIRED,
       Code::serverCertificateHasUnknownRoot},
      {G_TLS_CERTIFICATE_EXPIRED | G_TLS_CERTIFICATE_BAD_IDENTITY,
       Code::serverCertificateHasBadDate},
      {G_TLS_CERTIFICATE_NOT_ACTIVATED, Code::serverCertificateNotYetValid},
      {G_TLS_CERTIFICATE_BAD_IDENTITY, Code::serverCertificateUntrusted},
      {G_TLS_CERTIFICATE_REVOKED | G_TLS_CERTIFICATE_INSECURE, Code::serverCertificateUntrusted},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(urlErrorCodeForTlsFlags(static_cast<GTlsCertificateFlags>(row.flags)), row.expected)
        << row.flags;
  }
}

}  // namespace
}  // namespace vemba::linux_platform
