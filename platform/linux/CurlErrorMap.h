// How a failed libcurl transfer maps onto the URL-loading codes of the seam (UrlErrorCode.h).
// Pure functions: no I/O, no state; safe on any thread.
#pragma once

#include <curl/curl.h>

#include <optional>

namespace vemba::linux_platform {

// What libcurl reports next to its result code and that refines the mapping.
struct CurlFailureDetail {
  // The certificate verification result of the TLS library (CURLINFO_SSL_VERIFYRESULT), set only
  // when libcurl runs on OpenSSL, whose X509_V_ERR_* numbers it then carries.
  std::optional<long> opensslVerifyResult;
  // The errno of the last failed socket operation (CURLINFO_OS_ERRNO), 0 when none.
  long osErrno = 0;
};

// The URL-loading code for a transfer that ended with `code` (never CURLE_OK). Codes with no
// closer equivalent map to UrlErrorCode::unknown.
int urlErrorCodeForCurl(CURLcode code, const CurlFailureDetail& detail = {});

}  // namespace vemba::linux_platform
