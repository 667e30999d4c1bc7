// Measures the time of one warm request through the Linux HTTP client: sequential bid POSTs to a
// local exchange over loopback TLS on one reused connection, from dataTask() to completion.
//
//   vemba_http_latency [requests=2000]
//
// Prints the distribution in microseconds. A tool, not a test: it asserts nothing.
#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <vector>

#include "CurlHttpClient.h"
#include "HttpTestSupport.h"
#include "LocalExchange.h"

int main(int argc, char** argv) {
  using Clock = std::chrono::steady_clock;
  const int requests = argc > 1 ? std::max(1, std::atoi(argv[1])) : 2000;
  unsetenv("https_proxy");
  unsetenv("HTTPS_PROXY");
  unsetenv("all_proxy");
  unsetenv("ALL_PROXY");

  vemba::testing::LocalExchange exchange;
  vemba::linux_platform::CurlHttpClient::Options options;
  options.caFile = exchange.caFile();
  vemba::linux_platform::CurlHttpClient client(options);

  // A bid request of realistic size (about 600 bytes).
  vemba::platform::HttpRequest request = vemba::testing::bidRequest(
      exchange.origin(), "6F9619FF-8B86-D011-B42D-00C04FC964FF", "bench");
  request.headers.emplace_back("X-API-Key", "bench-key");
  request.body->insert(request.body->size() - 1,
                       ",\"app\":{\"bundle\":\"com.example.bench\",\"ver\":\"1.0\"},\"device\":{"
                       "\"ifa\":\"00000000-0000-0000-0000-000000000000\",\"ua\":\"Mozilla\\/5.0 "
                       "(Linux; CPU Linux OS 6_1_0 like Mac OS X) AppleWebKit\\/605.1.15 (KHTML, "
                       "like Gecko) Mobile\\/15E148\",\"ip\":\"\",\"os\":\"iOS\",\"osv\":\"6.1.0\","
                       "\"model\":\"Linux\",\"connection\":\"wifi\"}");

  std::mutex mutex;
  std::condition_variable done;
  const auto once = [&]() -> Clock::duration {
    bool finished = false;
    bool ok = false;
    const auto start = Clock::now();
    client.dataTask(request, [&](vemba::platform::HttpResult result) {
      const auto* response = std::get_if<vemba::platform::HttpResponse>(&result);
      const std::lock_guard<std::mutex> lock(mutex);
      ok = response != nullptr && response->statusCode == 200;
      finished = true;
      done.notify_one();
    });
    std::unique_lock<std::mutex> lock(mutex);
    done.wait(lock, [&] { return finished; });
    const auto took = Clock::now() - start;
    if (!ok) {
      std::fprintf(stderr, "a request failed\n");
      std::exit(1);
    }
    return took;
  };

  const auto first = once();  // connection and TLS handshake
  for (int i = 0; i < 50; ++i) {
    once();
  }
  std::vector<double> micros;
  micros.reserve(static_cast<std::size_t>(requests));
  for (int i = 0; i < requests; ++i) {
    micros.push_back(std::chrono::duration<double, std::micro>(once()).count());
  }
  std::sort(micros.begin(), micros.end());
  const auto at = [&](double q) {
    return micros[std::min(micros.size() - 1,
                           static_cast<std::size_t>(q * static_cast<double>(micros.size())))];
  };
  double sum = 0;
  for (const double m : micros) {
    sum += m;
  }
  std::printf("first request (handshake): %.0f us\n",
              std::chrono::duration<double, std::micro>(first).count());
  std::printf(
      "%d warm requests: min %.0f  median %.0f  p90 %.0f  p99 %.0f  max %.0f  mean %.0f us\n",
      requests, micros.front(), at(0.5), at(0.9), at(0.99), micros.back(),
      sum / static_cast<double>(micros.size()));
  const std::vector<nlohmann::json> bids = exchange.log("bid");
  std::printf("server saw %zu bids on %s\n", bids.size(),
              bids.front().at("peerPort") == bids.back().at("peerPort") ? "one connection"
                                                                        : "several connections");
  return 0;
}
