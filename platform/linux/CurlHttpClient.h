// The HTTP client of the Linux backend: libcurl's multi interface driven by one worker thread.
//
// Contract (on top of platform::HttpClient):
// - dataTask() may be called from any thread, including from a completion; it hands the task to
//   the worker and wakes it (curl_multi_wakeup) and returns at once.
// - Every completion runs on the worker thread, exactly once, after the transfer has ended:
//   either a TransportError (a URL-loading code and the request's URL) or an HttpResponse whose
//   body is always present, possibly empty. Completions must not throw and must not destroy the
//   client.
// - Connections (and their TLS sessions) stay in the multi handle's connection cache and are
//   reused by later requests to the same origin; Nagle's algorithm is off.
// - TLS is always verified (peer and host name). The trusted roots are libcurl's default store,
//   or only the bundle named by `caFile` when set (see Options::fromEnvironment()).
// - There is no HTTP cache on Linux: both cache policies load from the network.
// - Redirects are followed (http and https only, at most kMaxRedirects hops); a POST answered
//   with 301, 302 or 303 continues as a GET, as browsers do.
// - The time-out of a request bounds the whole transfer (connect, TLS, send and receive);
//   zero or less means none.
// - A response body larger than `maxResponseBytes` fails the task with
//   dataLengthExceedsMaximum (refused up front from Content-Length, or as soon as the streamed
//   body passes the limit), so a huge answer cannot exhaust memory.
// - Destruction stops and joins the worker; tasks still in flight are abandoned and their
//   completions are destroyed without running. The destructor must not run on the worker.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "platform/HttpClient.h"

namespace vemba::linux_platform {

class CurlHttpClient final : public platform::HttpClient {
 public:
  static constexpr std::size_t kDefaultMaxResponseBytes = 16 * 1024 * 1024;
  static constexpr long kMaxRedirects = 16;

  struct Options {
    // A PEM bundle of the only certificate authorities to trust; absent: libcurl's default.
    std::optional<std::string> caFile;
    std::size_t maxResponseBytes = kDefaultMaxResponseBytes;

    // The defaults, with `caFile` taken from SSL_CERT_FILE when it is set and not empty (the
    // variable curl's tool and OpenSSL honour). Read once, when called.
    static Options fromEnvironment();
  };

  CurlHttpClient();  // with Options::fromEnvironment()
  explicit CurlHttpClient(Options options);
  ~CurlHttpClient() override;
  CurlHttpClient(const CurlHttpClient&) = delete;
  CurlHttpClient& operator=(const CurlHttpClient&) = delete;

  void dataTask(platform::HttpRequest request, platform::HttpCompletion completion) override;

 private:
  class Worker;
  std::unique_ptr<Worker> worker_;
};

}  // namespace vemba::linux_platform
