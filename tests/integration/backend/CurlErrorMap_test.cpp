// The table from libcurl's result codes to URL-loading codes.
#include "CurlErrorMap.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "platform/UrlErrorCode.h"

namespace vemba::linux_platform {
namespace {

namespace Code = platform::UrlErrorCode;

struct Row {
  CURLcode curl;
  CurlFailureDetail detail;
  int expected;
};

CurlFailureDetail verify(long result) {
  return {result, 0};
}
CurlFailureDetail osErrno(long value) {
  return {std::nullopt, value};
}

// OpenSSL's X509_V_ERR_* numbers.
constexpr long kNotYetValid = 9;
constexpr long kExpired = 10;

// What the HTTP client's integration test cannot provoke over loopback (it sees refused,
// malformed and unsupported URLs, drops, time-outs, redirect loops, oversized bodies and an
// unknown issuer through real libcurl): the codes the retry rules key on, the default, and
// certificate failures refined by the verification result.
TEST(CurlErrorMapTest, MapsEachFailureClass) {
  const Row rows[] = {
      {CURLE_COULDNT_CONNECT, osErrno(EHOSTUNREACH), Code::cannotConnectToHost},
      {CURLE_COULDNT_CONNECT, osErrno(ENETUNREACH), Code::notConnectedToInternet},
      {CURLE_GOT_NOTHING, {}, Code::networkConnectionLost},
      {CURLE_SSL_CONNECT_ERROR, {}, Code::secureConnectionFailed},
      {CURLE_LOGIN_DENIED, {}, Code::unknown},
      {CURLE_PEER_FAILED_VERIFICATION, {}, Code::serverCertificateUntrusted},
      {CURLE_PEER_FAILED_VERIFICATION, verify(kExpired), Code::serverCertificateHasBadDate},
      {CURLE_PEER_FAILED_VERIFICATION, verify(kNotYetValid), Code::serverCertificateNotYetValid},
      // The verification result only refines certificate failures.
      {CURLE_SSL_CONNECT_ERROR, verify(kExpired), Code::secureConnectionFailed},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(urlErrorCodeForCurl(row.curl, row.detail), row.expected)
        << "curl code " << row.curl << " (" << curl_easy_strerror(row.curl) << "), errno "
        << row.detail.osErrno << ", verify result " << row.detail.opensslVerifyResult.value_or(-1);
  }
}

TEST(CurlErrorMapTest, EveryCodeMapsToACodeWithItsOwnDescription) {
  // Whatever libcurl reports, the code handed to the core is one it has a description for.
  const std::string unknownText = platform::urlErrorDescription(Code::unknown, "h");
  for (int raw = 1; raw < CURL_LAST; ++raw) {
    const int code = urlErrorCodeForCurl(static_cast<CURLcode>(raw));
    EXPECT_LT(code, 0) << raw;
    if (code != Code::unknown) {
      EXPECT_NE(platform::urlErrorDescription(code, "h"), unknownText) << raw << " -> " << code;
    }
  }
}

}  // namespace
}  // namespace vemba::linux_platform
