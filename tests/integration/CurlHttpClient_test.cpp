// The libcurl HTTP client against the local exchange over loopback TLS.
#include "CurlHttpClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <map>
#include <mutex>
#include <set>

#include "ExchangeTest.h"
#include "HttpTestSupport.h"
#include "LocalExchange.h"
#include "LoopbackPorts.h"
#include "platform/UrlErrorCode.h"

namespace vemba::tests {

using exchange::LocalExchange;
namespace {

using linux_platform::CurlHttpClient;
using nlohmann::json;
using platform::HttpRequest;
namespace Code = platform::UrlErrorCode;

class CurlHttpClientTest : public ExchangeTest</*Port=*/0, /*NeedsDisplay=*/false> {
 protected:
  static LocalExchange& exchange() { return *exchange_; }
  static CurlHttpClient::Options trusting() {
    CurlHttpClient::Options options;
    options.caFile = exchange().caFile();
    return options;
  }
  static HttpRequest get(const std::string& path) { return requestTo(exchange().origin() + path); }

  // The one recorded bid whose request carries `requestId`.
  static json recordedBid(const std::string& requestId) {
    std::vector<json> found;
    for (const json& entry : exchange().log("bid")) {
      if (json::parse(entry.at("body").get<std::string>()).value("id", "") == requestId) {
        found.push_back(entry);
      }
    }
    EXPECT_EQ(found.size(), 1u) << requestId;
    return found.empty() ? json() : found.front();
  }
};

TEST_F(CurlHttpClientTest, PostReachesTheServerAsSent) {
  CurlHttpClient client(trusting());
  HttpRequest request = bidRequest(exchange().origin(), "post-as-sent", "unit-post");
  // Slashes and non-ASCII text must arrive byte for byte.
  json body = json::parse(*request.body);
  body["device"] = {{"ua", "Mozilla/5.0 (Linux; CPU Linux OS 6_1_0) \u00e9"}};
  request.body = body.dump();
  request.headers.emplace_back("X-Empty-Key", "");

  const Outcome outcome = fetch(client, request);

  const platform::HttpResponse* answer = response(outcome);
  ASSERT_NE(answer, nullptr);
  EXPECT_EQ(answer->statusCode, 200);
  ASSERT_TRUE(answer->body.has_value());
  EXPECT_EQ(json::parse(*answer->body).at("id"), "post-as-sent");
  EXPECT_THAT(answer->headers,
              ::testing::Contains(::testing::Pair("Content-Type", "application/json")));

  const json entry = recordedBid("post-as-sent");
  EXPECT_EQ(entry.at("method"), "POST");
  EXPECT_EQ(entry.at("path"), "/bid");
  EXPECT_EQ(entry.at("body"), *request.body);
  EXPECT_EQ(LocalExchange::header(entry, "Content-Type"), "application/json");
  EXPECT_EQ(LocalExchange::header(entry, "X-Empty-Key"), "");
}

// Redirects, time-outs of zero or less, bodiless requests and unsendable header fields, seen by
// the exchange: every request it is sent is in its log, in order.
TEST_F(CurlHttpClientTest, RedirectsTimeoutsBodilessRequestsAndUnsendableHeaders) {
  CurlHttpClient client(trusting());
  // "METHOD path [body]" of each request sent since `before`, joined by ", ".
  const auto sentSince = [](std::size_t before) {
    const std::vector<json> all = exchange().log("other");
    std::string seen;
    for (std::size_t i = before; i < all.size(); ++i) {
      seen += (seen.empty() ? "" : ", ") + all[i].at("method").get<std::string>() + " " +
              all[i].at("path").get<std::string>() + " [" + all[i].value("body", "") + "]";
    }
    return seen;
  };
  struct Case {
    std::string method;
    std::string status;  // of the redirect; empty: no redirect
    std::optional<std::string> body;
    std::string seen;
  };
  const Case cases[] = {
      {"GET", "302", std::nullopt, "GET /_redirect/302 [], GET /final []"},
      // A POST answered 301, 302 or 303 continues as a GET; 307 keeps the method and body.
      {"POST", "302", "x", "POST /_redirect/302 [x], GET /final []"},
      {"POST", "303", "x", "POST /_redirect/303 [x], GET /final []"},
      {"POST", "301", "x", "POST /_redirect/301 [x], GET /final []"},
      {"POST", "307", "x", "POST /_redirect/307 [x], POST /final [x]"},
      // HEAD sends and receives no body; a bodiless POST sends an empty one.
      {"HEAD", "", std::nullopt, "HEAD /final []"},
      {"POST", "", std::nullopt, "POST /final []"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.method + " " + c.status);
    const std::size_t before = exchange().log("other").size();
    const std::string path = c.status.empty()
                                 ? "/final"
                                 : "/_redirect/" + c.status + "?status=" + c.status + "&to=/final";
    const Outcome outcome = fetch(client, requestTo(exchange().origin() + path, c.method, c.body));
    ASSERT_NE(response(outcome), nullptr);
    EXPECT_EQ(response(outcome)->statusCode, 404);  // the final answer, not a redirect
    EXPECT_EQ(sentSince(before), c.seen);
    if (c.method == "HEAD") {
      EXPECT_EQ(response(outcome)->body.value_or(""), "");
    } else if (c.method == "POST" && !c.body) {
      EXPECT_EQ(LocalExchange::header(exchange().log("other").back(), "Content-Length"), "0");
    }
  }

  // A time-out of zero or less means none.
  for (const int milliseconds : {0, -1}) {
    HttpRequest request = get("/checkout/slow?seconds=0.3");
    request.timeout = std::chrono::milliseconds(milliseconds);
    const Outcome outcome = fetch(client, request);
    ASSERT_NE(response(outcome), nullptr) << milliseconds;
    EXPECT_EQ(response(outcome)->statusCode, 200) << milliseconds;
  }

  // The hop cap ends a redirect loop: the first request and kMaxRedirects followed hops, no more.
  const std::size_t before = exchange().log("other").size();
  const HttpRequest loop = get("/_redirect/loop");
  const Outcome looped = fetch(client, loop);
  ASSERT_NE(transportError(looped), nullptr);
  EXPECT_EQ(transportError(looped)->code, Code::httpTooManyRedirects);
  EXPECT_EQ(transportError(looped)->url, loop.url);
  EXPECT_EQ(exchange().log("other").size() - before,
            static_cast<std::size_t>(CurlHttpClient::kMaxRedirects + 1));

  // A field that cannot be sent as given is left out; the others still go.
  HttpRequest request = get("/headers");
  request.headers = {
      {"X-Before", "1"}, {"X-Split", "a\r\nX-Injected: 1"}, {"Bad Name", "v"}, {"X-After", "2"}};
  ASSERT_NE(response(fetch(client, request)), nullptr);
  const json arrived = exchange().log("other").back();
  EXPECT_EQ(LocalExchange::header(arrived, "X-Before"), "1");
  EXPECT_EQ(LocalExchange::header(arrived, "X-After"), "2");
  EXPECT_FALSE(LocalExchange::header(arrived, "X-Split"));
  EXPECT_FALSE(LocalExchange::header(arrived, "X-Injected"));
  EXPECT_FALSE(LocalExchange::header(arrived, "Bad Name"));
}

// Each request's answer on the worker, never waiting for the exchange's slow answer (5 s) or a
// default time-out: a response with its status and body size, whatever the status, or a transport
// error with the URL-loading code (`code` non-zero). Bodies up to the limit pass, one byte over
// fails, whether declared or streamed.
TEST_F(CurlHttpClientTest, AnswersAreResponsesOfAnyStatusOrMappedTransportErrors) {
  const ClosedPort closed;
  const auto bid = [](const char* tagid) {
    HttpRequest request = bidRequest(exchange().origin(), std::string("answer-") + tagid, tagid);
    request.timeout = std::chrono::milliseconds(400);
    return request;
  };
  const struct {
    HttpRequest request;
    int code;
    long status = 0;
    std::size_t bodySize = 0;
  } cases[] = {
      {get("/no/such/page"), 0, 404, 10},  // "not found\n"
      {bid("exchange:error500"), 0, 500, 2},
      {bid("exchange:empty"), 0, 200, 0},
      {bid("exchange:huge?bytes=262144"), 0, 200, 262144},
      {bid("exchange:huge?bytes=262144&chunked=true"), 0, 200, 262144},
      {bid("exchange:huge?bytes=262145"), Code::dataLengthExceedsMaximum},
      {bid("exchange:huge?bytes=4194304&chunked=true"), Code::dataLengthExceedsMaximum},
      {requestTo(closed.url("https", "/bid")), Code::cannotConnectToHost},
      {requestTo("https://127.0.0.1:99999999/bid"), Code::badURL},
      {requestTo("ftp://127.0.0.1:1/file"), Code::unsupportedURL},
      {bid("exchange:drop"), Code::networkConnectionLost},
      {bid("exchange:slow?seconds=5"), Code::timedOut},
  };
  CurlHttpClient::Options options = trusting();
  options.maxResponseBytes = 256 * 1024;
  CurlHttpClient client(options);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.request.url + " " + c.request.body.value_or(""));
    const auto started = std::chrono::steady_clock::now();
    const Outcome outcome = fetch(client, c.request);
    EXPECT_NE(outcome.thread, std::this_thread::get_id());
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(4));
    if (c.code != 0) {
      const platform::TransportError* error = transportError(outcome);
      ASSERT_NE(error, nullptr);
      EXPECT_EQ(error->code, c.code);
      EXPECT_EQ(error->url, c.request.url);
      continue;
    }
    const platform::HttpResponse* answer = response(outcome);
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer->statusCode, c.status);
    ASSERT_TRUE(answer->body.has_value());
    EXPECT_EQ(answer->body->size(), c.bodySize);
  }
}

TEST_F(CurlHttpClientTest, TrustsTheBundleNamedBySslCertFileAndOnlyThat) {
  // An empty value names no bundle: libcurl's default store applies, which does not know the CA.
  // The suite's own bundle comes last, so it stays in force for the tests after this one.
  for (const std::string& bundle : {std::string(), exchange().caFile()}) {
    setenv("SSL_CERT_FILE", bundle.c_str(), 1);
    CurlHttpClient client;
    const Outcome outcome = fetch(client, get("/_health"));
    if (bundle.empty()) {
      EXPECT_EQ(transportError(outcome) ? transportError(outcome)->code : 0,
                Code::serverCertificateUntrusted);
    } else {
      EXPECT_EQ(response(outcome) ? response(outcome)->statusCode : 0, 200);
    }
  }
}

TEST_F(CurlHttpClientTest, ConcurrentTasksEachCompleteExactlyOnceOnTheWorker) {
  CurlHttpClient client(trusting());
  const ClosedPort closed;
  constexpr int kThreads = 4;
  constexpr int kPerThread = 8;
  std::mutex mutex;
  std::condition_variable changed;
  std::map<std::string, int> completions;
  std::set<std::thread::id> completionThreads;
  int total = 0;

  std::vector<std::thread> posters;
  for (int t = 0; t < kThreads; ++t) {
    posters.emplace_back([&, t] {
      for (int i = 0; i < kPerThread; ++i) {
        const std::string id = "concurrent-" + std::to_string(t) + "-" + std::to_string(i);
        HttpRequest request = bidRequest(exchange().origin(), id, "unit-concurrent");
        if (i % 4 == 3) {
          request.url = closed.url("https", "/bid");
        }
        client.dataTask(request, [&, id](platform::HttpResult) {
          const std::lock_guard<std::mutex> lock(mutex);
          ++completions[id];
          completionThreads.insert(std::this_thread::get_id());
          ++total;
          changed.notify_all();
        });
      }
    });
  }
  for (std::thread& poster : posters) {
    poster.join();
  }
  std::unique_lock<std::mutex> lock(mutex);
  ASSERT_TRUE(changed.wait_for(lock, std::chrono::seconds(30),
                               [&] { return total >= kThreads * kPerThread; }));
  lock.unlock();
  // Late duplicates would show up here.
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  lock.lock();
  EXPECT_EQ(total, kThreads * kPerThread);
  EXPECT_EQ(completions.size(), static_cast<std::size_t>(kThreads * kPerThread));
  for (const auto& [id, count] : completions) {
    EXPECT_EQ(count, 1) << id;
  }
  ASSERT_EQ(completionThreads.size(), 1u);
  EXPECT_NE(*completionThreads.begin(), std::this_thread::get_id());
}

TEST_F(CurlHttpClientTest, ACompletionMayStartTheNextTask) {
  CurlHttpClient client(trusting());
  auto second = std::make_shared<std::promise<Outcome>>();
  std::future<Outcome> secondDone = second->get_future();
  const std::string origin = exchange().origin();
  client.dataTask(bidRequest(origin, "chain-1", "unit-chain"), [&client, second, origin](
                                                                   platform::HttpResult first) {
    ASSERT_TRUE(std::holds_alternative<platform::HttpResponse>(first));
    client.dataTask(bidRequest(origin, "chain-2", "unit-chain"),
                    [second](platform::HttpResult result) {
                      second->set_value(Outcome{std::move(result), std::this_thread::get_id()});
                    });
  });
  ASSERT_EQ(secondDone.wait_for(std::chrono::seconds(30)), std::future_status::ready);
  const Outcome outcome = secondDone.get();
  ASSERT_NE(response(outcome), nullptr);
  EXPECT_EQ(json::parse(*response(outcome)->body).at("id"), "chain-2");
}

TEST_F(CurlHttpClientTest, DestructionAbandonsTasksInFlightWithoutRunningThem) {
  std::atomic<bool> ran{false};
  auto captured = std::make_shared<int>(0);
  std::weak_ptr<int> watch = captured;
  const std::size_t bidsBefore = exchange().log("bid").size();
  const auto started = std::chrono::steady_clock::now();
  {
    CurlHttpClient client(trusting());
    client.dataTask(bidRequest(exchange().origin(), "abandoned", "exchange:slow?seconds=5"),
                    [&ran, captured](platform::HttpResult) { ran = true; });
    captured.reset();
    // Wait until the request is at the server, so that it is truly in flight.
    ASSERT_GT(exchange().waitForLog("bid", bidsBefore + 1, std::chrono::seconds(10)).size(),
              bidsBefore);
  }
  EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(4));
  EXPECT_FALSE(ran);
  EXPECT_TRUE(watch.expired());
}

}  // namespace
}  // namespace vemba::tests
