#include "WebErrorMap.h"

#include <webkit/webkit.h>

#include <optional>
#include <string>

#include "platform/UrlErrorCode.h"

namespace vemba::linux_platform {
namespace {

namespace Code = platform::UrlErrorCode;

int webKitNetworkCode(int code) {
  switch (code) {
    case WEBKIT_NETWORK_ERROR_CANCELLED:
      return Code::cancelled;
    case WEBKIT_NETWORK_ERROR_UNKNOWN_PROTOCOL:
      return Code::unsupportedURL;
    case WEBKIT_NETWORK_ERROR_TRANSPORT:
      return Code::networkConnectionLost;
    default:  // FAILED, FILE_DOES_NOT_EXIST (local files are never loaded)
      return Code::unknown;
  }
}

int gioCode(int code) {
  switch (code) {
    case G_IO_ERROR_CONNECTION_REFUSED:
    case G_IO_ERROR_HOST_UNREACHABLE:
    case G_IO_ERROR_PROXY_FAILED:
    case G_IO_ERROR_PROXY_AUTH_FAILED:
    case G_IO_ERROR_PROXY_NEED_AUTH:
    case G_IO_ERROR_PROXY_NOT_ALLOWED:
      return Code::cannotConnectToHost;
    case G_IO_ERROR_NETWORK_UNREACHABLE:
      return Code::notConnectedToInternet;
    case G_IO_ERROR_HOST_NOT_FOUND:
      return Code::cannotFindHost;
    case G_IO_ERROR_TIMED_OUT:
      return Code::timedOut;
    case G_IO_ERROR_CANCELLED:
      return Code::cancelled;
    case G_IO_ERROR_CONNECTION_CLOSED:  // also G_IO_ERROR_BROKEN_PIPE, the same value
    case G_IO_ERROR_NOT_CONNECTED:
    case G_IO_ERROR_PARTIAL_INPUT:
      return Code::networkConnectionLost;
    case G_IO_ERROR_MESSAGE_TOO_LARGE:
      return Code::dataLengthExceedsMaximum;
    default:
      return Code::unknown;
  }
}

int resolverCode(int code) {
  switch (code) {
    // A temporary failure reads as a host that cannot be found, so the retry rules that key on
    // a missing host treat both alike.
    case G_RESOLVER_ERROR_NOT_FOUND:
    case G_RESOLVER_ERROR_TEMPORARY_FAILURE:
      return Code::cannotFindHost;
    default:
      return Code::dnsLookupFailed;
  }
}

int tlsCode(int code, GTlsCertificateFlags flags) {
  switch (code) {
    case G_TLS_ERROR_BAD_CERTIFICATE:
      return flags != 0 ? urlErrorCodeForTlsFlags(flags) : Code::serverCertificateUntrusted;
    case G_TLS_ERROR_CERTIFICATE_REQUIRED:
      return Code::clientCertificateRejected;
    default:  // the handshake failed, the peer does not speak TLS, the stream ended early
      return Code::secureConnectionFailed;
  }
}

int soupSessionCode(int code) {
  switch (code) {
    case SOUP_SESSION_ERROR_PARSING:
      return Code::cannotParseResponse;
    case SOUP_SESSION_ERROR_ENCODING:
      return Code::cannotDecodeContentData;
    case SOUP_SESSION_ERROR_TOO_MANY_REDIRECTS:
    case SOUP_SESSION_ERROR_TOO_MANY_RESTARTS:
      return Code::httpTooManyRedirects;
    case SOUP_SESSION_ERROR_REDIRECT_NO_LOCATION:
    case SOUP_SESSION_ERROR_REDIRECT_BAD_URI:
      return Code::badServerResponse;
    default:
      return Code::unknown;
  }
}

}  // namespace

int urlErrorCodeForTlsFlags(GTlsCertificateFlags flags) {
  // The most fundamental problem wins: an unknown issuer makes every other finding moot.
  if ((flags & G_TLS_CERTIFICATE_UNKNOWN_CA) != 0) {
    return Code::serverCertificateHasUnknownRoot;
  }
  if ((flags & G_TLS_CERTIFICATE_EXPIRED) != 0) {
    return Code::serverCertificateHasBadDate;
  }
  if ((flags & G_TLS_CERTIFICATE_NOT_ACTIVATED) != 0) {
    return Code::serverCertificateNotYetValid;
  }
  // A wrong identity, a revoked or insecure certificate, anything else.
  return Code::serverCertificateUntrusted;
}

platform::NavigationError navigationErrorFor(GQuark domain, int code, GTlsCertificateFlags tlsFlags,
                                             const char* failingUri, int redirects) {
  platform::NavigationError error;
  if (failingUri != nullptr && *failingUri != '\0') {
    error.failingUrl = std::string(failingUri);
  }
  if (domain == WEBKIT_POLICY_ERROR) {
    // The engine's own decisions keep the engine's codes (102: the policy cancelled the load).
    error.domain = std::string(platform::kWebKitErrorDomain);
    error.code = code;
    return error;
  }
  error.domain = std::string(platform::kUrlErrorDomain);
  if (domain == WEBKIT_NETWORK_ERROR && code == WEBKIT_NETWORK_ERROR_CANCELLED && tlsFlags != 0) {
    // The engine may end a load whose certificate it refused with a cancellation: the refusal is
    // the cause.
    error.code = urlErrorCodeForTlsFlags(tlsFlags);
  } else if (domain == WEBKIT_NETWORK_ERROR) {
    error.code = webKitNetworkCode(code);
  } else if (domain == G_IO_ERROR) {
    error.code = gioCode(code);
  } else if (domain == G_RESOLVER_ERROR) {
    error.code = resolverCode(code);
  } else if (domain == G_TLS_ERROR) {
    error.code = tlsCode(code, tlsFlags);
  } else if (domain == SOUP_SESSION_ERROR) {
    error.code = soupSessionCode(code);
  } else {
    error.code = redirects >= kEngineRedirectLimit ? Code::httpTooManyRedirects : Code::unknown;
  }
  return error;
}

}  // namespace vemba::linux_platform
