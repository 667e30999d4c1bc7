// The URL-loading error codes the library speaks of, and their standard descriptions.
// Backends map their own failures onto these codes; the core only ever sees these.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vemba::platform {

namespace UrlErrorCode {
inline constexpr int unknown = -1;
inline constexpr int cancelled = -999;
inline constexpr int badURL = -1000;
inline constexpr int timedOut = -1001;
inline constexpr int unsupportedURL = -1002;
inline constexpr int cannotFindHost = -1003;
inline constexpr int cannotConnectToHost = -1004;
inline constexpr int networkConnectionLost = -1005;
inline constexpr int dnsLookupFailed = -1006;
inline constexpr int httpTooManyRedirects = -1007;
inline constexpr int notConnectedToInternet = -1009;
inline constexpr int badServerResponse = -1011;
inline constexpr int zeroByteResource = -1014;
inline constexpr int cannotDecodeContentData = -1016;
inline constexpr int cannotParseResponse = -1017;
inline constexpr int dataLengthExceedsMaximum = -1103;
inline constexpr int secureConnectionFailed = -1200;
inline constexpr int serverCertificateHasBadDate = -1201;
inline constexpr int serverCertificateUntrusted = -1202;
inline constexpr int serverCertificateHasUnknownRoot = -1203;
inline constexpr int serverCertificateNotYetValid = -1204;
inline constexpr int clientCertificateRejected = -1205;
}  // namespace UrlErrorCode

inline constexpr std::string_view kUrlErrorDomain = "URLError";

// The standard localised (English) description of a URL-loading code; `host` fills the
// certificate texts that name the server.
std::string urlErrorDescription(int code, std::string_view host);

// The readable description of a failure identified by `domain` and `code` (a navigation error,
// for instance), the one text used both for log lines and for errors handed on: URL-loading codes
// as urlErrorDescription() (the host taken from `failingUrl`), the web engine's "Frame load
// interrupted" (102), and for anything else the platform's generic text naming domain and code.
std::string describe(std::string_view domain, int code,
                     const std::optional<std::string>& failingUrl);

}  // namespace vemba::platform
