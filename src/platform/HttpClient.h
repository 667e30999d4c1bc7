// The HTTP client of the platform: one process-wide client that runs data tasks.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace vemba::platform {

using HttpHeaders = std::vector<std::pair<std::string, std::string>>;

// How the client may use its cache for a request. Only the platform default is used today.
enum class CachePolicy { useProtocolCachePolicy, reloadIgnoringLocalCacheData };

struct HttpRequest {
  std::string method = "GET";
  std::string url;  // an absolute URL string
  HttpHeaders headers;
  std::optional<std::string> body;
  std::chrono::milliseconds timeout{std::chrono::seconds(60)};
  CachePolicy cachePolicy = CachePolicy::useProtocolCachePolicy;
};

struct HttpResponse {
  long statusCode = 0;
  HttpHeaders headers;
  // Absent when the task completed with no body object at all; present (maybe empty) otherwise.
  std::optional<std::string> body;
};

// A failure of the transport (no connection, time-out, TLS failure, ...), expressed in the
// URL-loading codes of the system (see UrlErrorCode.h). Backends report the code and the URL
// only; the core turns them into the readable text (platform::describe()).
struct TransportError {
  int code = 0;
  std::string url;

  friend bool operator==(const TransportError&, const TransportError&) = default;
};

using HttpResult = std::variant<HttpResponse, TransportError>;
using HttpCompletion = std::function<void(HttpResult)>;

// Contract: dataTask() may be called on any thread and returns at once. The completion, when
// given, is called exactly once on the client's own worker thread (never on the caller's stack),
// with either a transport error or a response. A task cannot be cancelled; the client keeps the
// completion alive until it has run. Implementations are thread-safe.
class HttpClient {
 public:
  virtual ~HttpClient() = default;
  virtual void dataTask(HttpRequest request, HttpCompletion completion) = 0;
};

}  // namespace vemba::platform
