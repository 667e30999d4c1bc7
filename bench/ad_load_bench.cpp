// The time from load() to adDidLoad on the main thread, beside a bare libcurl POST of the same
// bytes to the same exchange over the same kind of warm loopback TLS connection (the physical
// floor). Both run in one process, interleaved, so machine load affects them alike; the figures
// printed are medians and percentiles of each and the ratio of the medians.
//
// usage: vemba_ad_load_bench [ITERATIONS]   (needs the exchange origin of the build to be
// 127.0.0.1:18443, as every preset has it; starts and stops its own local exchange)
#include <curl/curl.h>
#include <glib.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "LocalExchange.h"
#include "ads/bidding/BidExchange.h"
#include "ads/bidding/BidRecordsJson.h"
#include "ads/core/UserAgentFetcher.h"
#include "platform/HttpClient.h"
#include "platform/Services.h"
#include "vemba/Vemba.h"

namespace {

namespace platform = vemba::platform;
using Clock = std::chrono::steady_clock;
using Micros = std::chrono::duration<double, std::micro>;

constexpr int kExchangePort = 18443;
constexpr int kWarmup = 50;

class TimingDelegate : public vemba::VembaInterstitialAdDelegate {
 public:
  bool done = false;
  bool loaded = false;
  Clock::time_point at;
  void adDidLoad(vemba::VembaInterstitialAd&) override { finish(true); }
  void adDidFailToLoad(vemba::VembaInterstitialAd&, const vemba::Error& error) override {
    std::fprintf(stderr, "load failed: %s\n", error.description.c_str());
    finish(false);
  }
  void adDidShow(vemba::VembaInterstitialAd&) override {}
  void adDidDismiss(vemba::VembaInterstitialAd&) override {}
  void adDidClick(vemba::VembaInterstitialAd&) override {}

 private:
  void finish(bool ok) {
    at = Clock::now();
    loaded = ok;
    done = true;
  }
};

// One load through the library, timed from load() to adDidLoad.
double timeAdLoad(const std::shared_ptr<vemba::VembaInterstitialAd>& ad,
                  const std::shared_ptr<TimingDelegate>& delegate) {
  delegate->done = false;
  const Clock::time_point start = Clock::now();
  ad->load();
  while (!delegate->done) {
    g_main_context_iteration(nullptr, TRUE);
  }
  if (!delegate->loaded) {
    std::exit(1);
  }
  return Micros(delegate->at - start).count();
}

// The backend's HTTP client alone: dataTask() to its completion on the worker thread, with the
// request the library sends. Shows how the library's overhead splits between the client and the
// rest (encoding, decoding, the hop to the main thread).
double timeClientOnly(const std::string& url, const std::string& body) {
  platform::HttpRequest request;
  request.method = "POST";
  request.url = url;
  request.headers = {{"Content-Type", "application/json"}, {"X-API-Key", "bench-key"}};
  request.body = body;
  std::mutex mutex;
  std::condition_variable done;
  bool finished = false;
  Clock::time_point end;
  const Clock::time_point start = Clock::now();
  platform::services().http->dataTask(std::move(request), [&](platform::HttpResult) {
    const std::lock_guard lock(mutex);
    end = Clock::now();
    finished = true;
    done.notify_one();
  });
  std::unique_lock lock(mutex);
  done.wait(lock, [&] { return finished; });
  return Micros(end - start).count();
}

size_t discard(char*, size_t size, size_t count, void* sink) {
  static_cast<std::string*>(sink)->append(size * count, '\0');
  return size * count;
}

// The floor: the same POST with the same headers and body on one reused curl handle.
class BarePost {
 public:
  BarePost(const std::string& url, const std::string& body, const std::string& caFile)
      : handle_(curl_easy_init()), body_(body) {
    headers_ = curl_slist_append(headers_, "Content-Type: application/json");
    headers_ = curl_slist_append(headers_, "X-API-Key: bench-key");
    headers_ = curl_slist_append(headers_, "Expect:");
    curl_easy_setopt(handle_, CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle_, CURLOPT_HTTPHEADER, headers_);
    curl_easy_setopt(handle_, CURLOPT_POSTFIELDS, body_.c_str());
    curl_easy_setopt(handle_, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body_.size()));
    curl_easy_setopt(handle_, CURLOPT_CAINFO, caFile.c_str());
    curl_easy_setopt(handle_, CURLOPT_TCP_NODELAY, 1L);
    curl_easy_setopt(handle_, CURLOPT_WRITEFUNCTION, discard);
    curl_easy_setopt(handle_, CURLOPT_WRITEDATA, &sink_);
  }
  ~BarePost() {
    curl_slist_free_all(headers_);
    curl_easy_cleanup(handle_);
  }
  double time() {
    sink_.clear();
    const Clock::time_point start = Clock::now();
    const CURLcode result = curl_easy_perform(handle_);
    const Clock::time_point end = Clock::now();
    if (result != CURLE_OK) {
      std::fprintf(stderr, "bare POST failed: %s\n", curl_easy_strerror(result));
      std::exit(1);
    }
    return Micros(end - start).count();
  }

 private:
  CURL* handle_;
  curl_slist* headers_ = nullptr;
  std::string body_;
  std::string sink_;
};

double percentile(std::vector<double> values, double p) {
  std::sort(values.begin(), values.end());
  const auto index = static_cast<std::size_t>(p * static_cast<double>(values.size() - 1));
  return values[index];
}

}  // namespace

int main(int argc, char** argv) {
  const int iterations = argc > 1 ? std::atoi(argv[1]) : 1000;
  vemba::exchange::LocalExchange::Options options;
  options.port = kExchangePort;
  vemba::exchange::LocalExchange exchange(options);
  // The backend's client reads the trusted bundle when it is first used.
  setenv("SSL_CERT_FILE", exchange.caFile().c_str(), 1);
  curl_global_init(CURL_GLOBAL_DEFAULT);

  vemba::VembaSDK::shared().initialize(vemba::VembaConfiguration("bench-key", false));
  auto ad = vemba::VembaInterstitialAd::create("bench-unit");
  auto delegate = std::make_shared<TimingDelegate>();
  ad->setDelegate(delegate);

  // The bytes the library sends, built by the library itself.
  const std::string userAgent = vemba::UserAgentFetcher::shared().userAgent();
  vemba::ads::BidExchange requestBuilder({vemba::ads::AdFormat::Kind::interstitial, ""},
                                         "bench-unit");
  const std::string body = *vemba::ads::encodeBidRequestText(
      requestBuilder.createBidRequest(userAgent, requestBuilder.bidFloor()));
  BarePost bare(vemba::ads::BidEndpoints::defaults().bidEndpoint, body, exchange.caFile());

  for (int i = 0; i < kWarmup; ++i) {
    timeAdLoad(ad, delegate);
    bare.time();
  }
  const std::string url = vemba::ads::BidEndpoints::defaults().bidEndpoint;
  std::vector<double> library;
  std::vector<double> floor;
  std::vector<double> client;
  library.reserve(static_cast<std::size_t>(iterations));
  floor.reserve(static_cast<std::size_t>(iterations));
  for (int i = 0; i < iterations; ++i) {
    // Alternate which goes first so neither always follows the other.
    if (i % 2 == 0) {
      library.push_back(timeAdLoad(ad, delegate));
      floor.push_back(bare.time());
    } else {
      floor.push_back(bare.time());
      library.push_back(timeAdLoad(ad, delegate));
    }
    client.push_back(timeClientOnly(url, body));
  }

  const double libraryMedian = percentile(library, 0.5);
  const double floorMedian = percentile(floor, 0.5);
  std::printf("load() -> adDidLoad vs bare libcurl POST, loopback TLS, warm connection, %d runs\n",
              iterations);
  std::printf("%-28s %10s %10s %10s\n", "", "median us", "p90 us", "p99 us");
  std::printf("%-28s %10.1f %10.1f %10.1f\n", "library load -> adDidLoad", libraryMedian,
              percentile(library, 0.9), percentile(library, 0.99));
  std::printf("%-28s %10.1f %10.1f %10.1f\n", "bare libcurl POST", floorMedian,
              percentile(floor, 0.9), percentile(floor, 0.99));
  std::printf("%-28s %10.1f %10.1f %10.1f\n", "backend HTTP client only", percentile(client, 0.5),
              percentile(client, 0.9), percentile(client, 0.99));
  std::printf("ratio of medians: %.3f (target <= 1.10)\n", libraryMedian / floorMedian);
  std::printf("median overhead: %.1f us\n", libraryMedian - floorMedian);
  curl_global_cleanup();
  return 0;
}
