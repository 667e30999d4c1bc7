#include "CurlHttpClient.h"

#include <curl/curl.h>
#include <strings.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <utility>
#include <vector>

#include "CurlErrorMap.h"
#include "CurlHeaders.h"
#include "common/ThreadSafety.h"
#include "platform/UrlErrorCode.h"

namespace vemba::linux_platform {
namespace {

// How long the worker sleeps in curl_multi_poll when nothing is due; libcurl's own timers and
// curl_multi_wakeup() end the wait earlier.
constexpr int kIdlePollMilliseconds = 10'000;

bool tlsLibraryIsOpenSsl() {
  const curl_version_info_data* info = curl_version_info(CURLVERSION_NOW);
  return info != nullptr && info->ssl_version != nullptr &&
         std::string_view(info->ssl_version).starts_with("OpenSSL/");
}

// One data task from hand-over to completion. Owned by the worker once handed over.
struct Transfer {
  platform::HttpRequest request;
  platform::HttpCompletion completion;
  std::size_t maxResponseBytes = 0;

  CURL* easy = nullptr;
  curl_slist* requestHeaders = nullptr;
  std::string responseBody;
  ResponseHeaderCollector responseHeaders;
  bool bodyTooLarge = false;

  Transfer(platform::HttpRequest r, platform::HttpCompletion c, std::size_t limit)
      : request(std::move(r)), completion(std::move(c)), maxResponseBytes(limit) {}
  ~Transfer() {
    if (easy != nullptr) {
      curl_easy_cleanup(easy);
    }
    curl_slist_free_all(requestHeaders);
  }
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;
};

std::size_t onBody(char* data, std::size_t size, std::size_t count, void* user) {
  auto* transfer = static_cast<Transfer*>(user);
  const std::size_t length = size * count;
  if (length > transfer->maxResponseBytes - transfer->responseBody.size()) {
    transfer->bodyTooLarge = true;
    return 0;  // any short count makes libcurl abort with CURLE_WRITE_ERROR
  }
  try {
    transfer->responseBody.append(data, length);
  } catch (const std::bad_alloc&) {
    transfer->bodyTooLarge = true;
    return 0;
  }
  return length;
}

std::size_t onHeader(char* data, std::size_t size, std::size_t count, void* user) {
  auto* transfer = static_cast<Transfer*>(user);
  const std::size_t length = size * count;
  transfer->responseHeaders.addLine(std::string_view(data, length));
  return length;
}

}  // namespace

class CurlHttpClient::Worker {
 public:
  explicit Worker(Options options)
      : options_(std::move(options)), opensslVerifyResults_(tlsLibraryIsOpenSsl()) {
    // Reference-counted by libcurl and thread-safe in the libcurl this backend requires (7.84+).
    if (curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK) {
      throw std::runtime_error("libcurl could not be initialised");
    }
    multi_ = curl_multi_init();
    if (multi_ == nullptr) {
      curl_global_cleanup();
      throw std::runtime_error("libcurl multi handle could not be created");
    }
    thread_ = std::thread([this] { run(); });
  }

  ~Worker() {
    {
      const MutexLock lock(mutex_);
      stopping_ = true;
    }
    curl_multi_wakeup(multi_);
    thread_.join();
    // Abandoned tasks: their completions are destroyed here without running.
    for (const auto& entry : active_) {
      curl_multi_remove_handle(multi_, entry.first);
    }
    active_.clear();
    incoming_.clear();
    curl_multi_cleanup(multi_);
    curl_global_cleanup();
  }

  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  void submit(platform::HttpRequest request, platform::HttpCompletion completion) {
    auto transfer = std::make_unique<Transfer>(std::move(request), std::move(completion),
                                               options_.maxResponseBytes);
    {
      const MutexLock lock(mutex_);
      if (stopping_) {
        return;
      }
      incoming_.push_back(std::move(transfer));
    }
    curl_multi_wakeup(multi_);
  }

 private:
  void run() {
    for (;;) {
      std::vector<std::unique_ptr<Transfer>> handedOver;
      {
        const MutexLock lock(mutex_);
        if (stopping_) {
          return;
        }
        handedOver.swap(incoming_);
      }
      for (auto& transfer : handedOver) {
        start(std::move(transfer));
      }
      int running = 0;
      curl_multi_perform(multi_, &running);
      finishCompleted();
      curl_multi_poll(multi_, nullptr, 0, kIdlePollMilliseconds, nullptr);
    }
  }

  void start(std::unique_ptr<Transfer> transfer) {
    CURL* easy = curl_easy_init();
    if (easy == nullptr) {
      complete(*transfer, CURLE_OUT_OF_MEMORY);
      return;
    }
    transfer->easy = easy;
    const CURLcode configured = configure(*transfer);
    if (configured != CURLE_OK) {
      complete(*transfer, configured);
      return;
    }
    if (curl_multi_add_handle(multi_, easy) != CURLM_OK) {
      complete(*transfer, CURLE_FAILED_INIT);
      return;
    }
    active_.emplace(easy, std::move(transfer));
  }

  // Sets every option of the transfer; the first refusal fails the task with its code.
  CURLcode configure(Transfer& transfer) {
    CURL* easy = transfer.easy;
    const platform::HttpRequest& request = transfer.request;
    CURLcode result = CURLE_OK;
    const auto set = [&](CURLoption option, auto value) {
      if (result == CURLE_OK) {
        result = curl_easy_setopt(easy, option, value);
      }
    };

    set(CURLOPT_URL, request.url.c_str());
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    set(CURLOPT_FOLLOWLOCATION, 1L);
    set(CURLOPT_MAXREDIRS, kMaxRedirects);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_TCP_NODELAY, 1L);
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    if (options_.caFile) {
      set(CURLOPT_CAINFO, options_.caFile->c_str());
    }
    set(CURLOPT_ACCEPT_ENCODING, "");  // every encoding libcurl can decode
    const long long timeout = request.timeout.count();
    set(CURLOPT_TIMEOUT_MS, timeout > 0 ? static_cast<long>(std::min<long long>(
                                              timeout, std::numeric_limits<long>::max()))
                                        : 0L);
    set(CURLOPT_MAXFILESIZE_LARGE,
        static_cast<curl_off_t>(std::min<std::size_t>(
            options_.maxResponseBytes,
            static_cast<std::size_t>(std::numeric_limits<curl_off_t>::max()))));
    set(CURLOPT_WRITEFUNCTION, &onBody);
    set(CURLOPT_WRITEDATA, static_cast<void*>(&transfer));
    set(CURLOPT_HEADERFUNCTION, &onHeader);
    set(CURLOPT_HEADERDATA, static_cast<void*>(&transfer));

    const std::string& method = request.method;
    if (request.body) {
      set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body->size()));
      set(CURLOPT_POSTFIELDS, request.body->data());
      if (method != "POST") {
        set(CURLOPT_CUSTOMREQUEST, method.c_str());
      }
    } else if (method == "HEAD") {
      set(CURLOPT_NOBODY, 1L);
    } else if (method == "POST") {
      set(CURLOPT_POSTFIELDSIZE_LARGE, curl_off_t{0});
      set(CURLOPT_POSTFIELDS, "");
    } else if (method != "GET") {
      set(CURLOPT_CUSTOMREQUEST, method.c_str());
    }

    bool expectGiven = false;
    for (const auto& [name, value] : request.headers) {
      const std::optional<std::string> line = curlRequestHeaderLine(name, value);
      if (!line) {
        continue;  // a field that cannot be sent is left out rather than corrupt the request
      }
      expectGiven = expectGiven || strcasecmp(name.c_str(), "Expect") == 0;
      append(transfer, *line, result);
    }
    if (!expectGiven) {
      // libcurl would otherwise hold back a large body (over 1 MiB in 7.88) until the server
      // answers "100 Continue", or until a one-second wait has passed.
      append(transfer, "Expect:", result);
    }
    set(CURLOPT_HTTPHEADER, transfer.requestHeaders);
    return result;
  }

  static void append(Transfer& transfer, const std::string& line, CURLcode& result) {
    if (result != CURLE_OK) {
      return;
    }
    curl_slist* grown = curl_slist_append(transfer.requestHeaders, line.c_str());
    if (grown == nullptr) {
      result = CURLE_OUT_OF_MEMORY;
      return;
    }
    transfer.requestHeaders = grown;
  }

  void finishCompleted() {
    int left = 0;
    while (CURLMsg* message = curl_multi_info_read(multi_, &left)) {
      if (message->msg != CURLMSG_DONE) {
        continue;
      }
      CURL* easy = message->easy_handle;
      const CURLcode code = message->data.result;
      curl_multi_remove_handle(multi_, easy);
      const auto found = active_.find(easy);
      if (found == active_.end()) {
        continue;
      }
      std::unique_ptr<Transfer> transfer = std::move(found->second);
      active_.erase(found);
      complete(*transfer, code);
    }
  }

  // Runs the completion of a finished transfer, on the worker, holding no lock: it may start
  // new tasks.
  void complete(Transfer& transfer, CURLcode code) {
    platform::HttpCompletion completion = std::move(transfer.completion);
    if (!completion) {
      return;
    }
    if (code == CURLE_OK) {
      long status = 0;
      curl_easy_getinfo(transfer.easy, CURLINFO_RESPONSE_CODE, &status);
      completion(platform::HttpResponse{status, transfer.responseHeaders.takeHeaders(),
                                        std::move(transfer.responseBody)});
      return;
    }
    completion(transportError(transfer, code));
  }

  platform::TransportError transportError(const Transfer& transfer, CURLcode code) const {
    int urlCode = platform::UrlErrorCode::dataLengthExceedsMaximum;
    if (!transfer.bodyTooLarge) {
      CurlFailureDetail detail;
      if (transfer.easy != nullptr) {
        if (opensslVerifyResults_) {
          long verifyResult = 0;
          if (curl_easy_getinfo(transfer.easy, CURLINFO_SSL_VERIFYRESULT, &verifyResult) ==
              CURLE_OK) {
            detail.opensslVerifyResult = verifyResult;
          }
        }
        curl_easy_getinfo(transfer.easy, CURLINFO_OS_ERRNO, &detail.osErrno);
      }
      urlCode = urlErrorCodeForCurl(code, detail);
    }
    return platform::TransportError{urlCode, transfer.request.url};
  }

  const Options options_;
  const bool opensslVerifyResults_;
  CURLM* multi_ = nullptr;

  Mutex mutex_;
  bool stopping_ VEMBA_GUARDED_BY(mutex_) = false;
  std::vector<std::unique_ptr<Transfer>> incoming_ VEMBA_GUARDED_BY(mutex_);
  std::unordered_map<CURL*, std::unique_ptr<Transfer>> active_;  // worker thread only
  std::thread thread_;
};

CurlHttpClient::Options CurlHttpClient::Options::fromEnvironment() {
  Options options;
  // getenv is only unsafe against a concurrent setenv, which a library cannot prevent; this runs
  // once per client, in practice at start-up.
  if (const char* bundle = std::getenv("SSL_CERT_FILE"); bundle != nullptr && *bundle != '\0') {
    options.caFile = bundle;
  }
  return options;
}

CurlHttpClient::CurlHttpClient() : CurlHttpClient(Options::fromEnvironment()) {}

CurlHttpClient::CurlHttpClient(Options options)
    : worker_(std::make_unique<Worker>(std::move(options))) {}

CurlHttpClient::~CurlHttpClient() = default;

void CurlHttpClient::dataTask(platform::HttpRequest request, platform::HttpCompletion completion) {
  worker_->submit(std::move(request), std::move(completion));
}

}  // namespace vemba::linux_platform
