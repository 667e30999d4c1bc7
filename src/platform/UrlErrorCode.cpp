#include "platform/UrlErrorCode.h"

#include "platform/WebView.h"
#include "vemba/Url.h"

namespace vemba::platform {

std::string urlErrorDescription(int code, std::string_view host) {
  const std::string server(host);
  switch (code) {
    case UrlErrorCode::cancelled:
      return "cancelled";
    case UrlErrorCode::badURL:
      return "unsupported URL";
    case UrlErrorCode::timedOut:
      return "The request timed out.";
    case UrlErrorCode::unsupportedURL:
      return "unsupported URL";
    case UrlErrorCode::cannotFindHost:
      return "A server with the specified hostname could not be found.";
    case UrlErrorCode::cannotConnectToHost:
      return "Could not connect to the server.";
    case UrlErrorCode::networkConnectionLost:
      return "The network connection was lost.";
    case UrlErrorCode::dnsLookupFailed:
      return "A server with the specified hostname could not be found.";
    case UrlErrorCode::httpTooManyRedirects:
      return "too many HTTP redirects";
    case UrlErrorCode::notConnectedToInternet:
      return "The Internet connection appears to be offline.";
    case UrlErrorCode::badServerResponse:
      return "The server returned an invalid response.";
    case UrlErrorCode::zeroByteResource:
      return "zero byte resource";
    case UrlErrorCode::cannotDecodeContentData:
      return "cannot decode raw data";
    case UrlErrorCode::cannotParseResponse:
      return "cannot parse response";
    case UrlErrorCode::dataLengthExceedsMaximum:
      return "resource exceeds maximum size";
    case UrlErrorCode::secureConnectionFailed:
      return "An SSL error has occurred and a secure connection to the server cannot be made.";
    case UrlErrorCode::serverCertificateHasBadDate:
      return "The certificate for this server has expired. You might be connecting to a server "
             "that is pretending to be \u201C" +
             server + "\u201D which could put your confidential information at risk.";
    case UrlErrorCode::serverCertificateUntrusted:
      return "The certificate for this server is invalid. You might be connecting to a server "
             "that is pretending to be \u201C" +
             server + "\u201D which could put your confidential information at risk.";
    case UrlErrorCode::serverCertificateHasUnknownRoot:
      return "The certificate for this server was signed by an unknown certifying authority. You "
             "might be connecting to a server that is pretending to be \u201C" +
             server + "\u201D which could put your confidential information at risk.";
    case UrlErrorCode::serverCertificateNotYetValid:
      return "The certificate for this server is not yet valid. You might be connecting to a "
             "server that is pretending to be \u201C" +
             server + "\u201D which could put your confidential information at risk.";
    case UrlErrorCode::clientCertificateRejected:
      return "The server did not accept the certificate.";
    default:
      return "An unknown error occurred.";
  }
}

namespace {
constexpr std::string_view kFrameLoadInterrupted = "Frame load interrupted";
}  // namespace

std::string describe(std::string_view domain, int code,
                     const std::optional<std::string>& failingUrl) {
  if (domain == kUrlErrorDomain) {
    std::string host;
    if (failingUrl) {
      if (const std::optional<Url> url = Url::parse(*failingUrl)) {
        host = url->host();
      }
    }
    return urlErrorDescription(code, host);
  }
  if (domain == kWebKitErrorDomain && code == WebKitErrorCode::frameLoadInterrupted) {
    return std::string(kFrameLoadInterrupted);
  }
  return "The operation couldn't be completed. (" + std::string(domain) + " error " +
         std::to_string(code) + ".)";
}

}  // namespace vemba::platform
