#include "CurlErrorMap.h"

#include <cerrno>

#include "platform/UrlErrorCode.h"

namespace vemba::linux_platform {
namespace {

namespace Code = platform::UrlErrorCode;

// OpenSSL's certificate verification results (X509_V_ERR_*, stable across OpenSSL releases),
// spelled out here so that the backend does not need OpenSSL's headers.
constexpr long kX509CertNotYetValid = 9;
constexpr long kX509CertHasExpired = 10;
constexpr long kX509ErrorInCertNotBeforeField = 13;
constexpr long kX509ErrorInCertNotAfterField = 14;

// A failed certificate check, refined by why the TLS library rejected the chain. A hostname
// mismatch (checked by libcurl itself, verify result 0), an unknown or self-signed root and
// anything else all read as an untrusted certificate.
int certificateFailure(const CurlFailureDetail& detail) {
  if (detail.opensslVerifyResult) {
    switch (*detail.opensslVerifyResult) {
      case kX509CertHasExpired:
      case kX509ErrorInCertNotAfterField:
        return Code::serverCertificateHasBadDate;
      case kX509CertNotYetValid:
      case kX509ErrorInCertNotBeforeField:
        return Code::serverCertificateNotYetValid;
      default:
        break;
    }
  }
  return Code::serverCertificateUntrusted;
}

}  // namespace

int urlErrorCodeForCurl(CURLcode code, const CurlFailureDetail& detail) {
  switch (code) {
    case CURLE_URL_MALFORMAT:
      return Code::badURL;
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_NOT_BUILT_IN:
      return Code::unsupportedURL;

    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
      return Code::cannotFindHost;
    case CURLE_COULDNT_CONNECT:
      // No route at all means the machine is offline rather than the server unreachable.
      if (detail.osErrno == ENETUNREACH || detail.osErrno == ENETDOWN) {
        return Code::notConnectedToInternet;
      }
      return Code::cannotConnectToHost;
    case CURLE_INTERFACE_FAILED:
    case CURLE_NO_CONNECTION_AVAILABLE:
    case CURLE_QUIC_CONNECT_ERROR:
    case CURLE_PROXY:
      return Code::cannotConnectToHost;

    case CURLE_OPERATION_TIMEDOUT:
      return Code::timedOut;

    // The connection broke before a complete response arrived.
    case CURLE_GOT_NOTHING:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_PARTIAL_FILE:
    case CURLE_SEND_FAIL_REWIND:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
    case CURLE_HTTP3:
      return Code::networkConnectionLost;

    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_HTTP_RETURNED_ERROR:
      return Code::badServerResponse;
    case CURLE_BAD_CONTENT_ENCODING:
      return Code::cannotDecodeContentData;
    case CURLE_TOO_MANY_REDIRECTS:
      return Code::httpTooManyRedirects;
    // The body outgrew the client's limit: refused up front from Content-Length, or by the
    // write callback while it streamed (the callback refuses data for no other reason).
    case CURLE_FILESIZE_EXCEEDED:
    case CURLE_WRITE_ERROR:
      return Code::dataLengthExceedsMaximum;
    case CURLE_ABORTED_BY_CALLBACK:
      return Code::cancelled;

    case CURLE_PEER_FAILED_VERIFICATION:  // also CURLE_SSL_CACERT
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_PINNEDPUBKEYNOTMATCH:
    case CURLE_SSL_INVALIDCERTSTATUS:
      return certificateFailure(detail);
    case CURLE_SSL_CLIENTCERT:
      return Code::clientCertificateRejected;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CRL_BADFILE:
    case CURLE_SSL_SHUTDOWN_FAILED:
    case CURLE_SSL_ENGINE_NOTFOUND:
    case CURLE_SSL_ENGINE_SETFAILED:
    case CURLE_SSL_ENGINE_INITFAILED:
    case CURLE_USE_SSL_FAILED:
      return Code::secureConnectionFailed;

    default:
      return Code::unknown;
  }
}

}  // namespace vemba::linux_platform
