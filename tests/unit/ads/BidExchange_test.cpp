// The bid exchange: request shape, outcome classification, callback order and threads of
// delivery, billing URL rules and the billing pixel.
#include <gtest/gtest.h>

#include <limits>

#include "AdTestSupport.h"
#include "RecordingDelegate.h"
#include "ads/bidding/BidRecordsJson.h"
#include "ads/formats/BidExchangeForTesting.h"
#include "platform/UrlErrorCode.h"

namespace vemba::tests {
namespace {

class BidExchangeTest : public AdTest {
 protected:
  BidExchangeTest() {
    delegate = std::make_shared<RecordingDelegate>();
    ad = VembaInterstitialAd::create("unit-1");
    ad->setDelegate(delegate);
  }

  // Loads and answers the request with `body`, then runs the main queue.
  void loadAndAnswer(long status, std::optional<std::string> body) {
    ad->load();
    platform.http.respondLast(status, std::move(body));
    platform.mainQueue.runUntilIdle();
  }

  const ads::BidExchange& exchangeOf() const { return ads::BidExchangeForTesting::of(*ad); }

  std::shared_ptr<RecordingDelegate> delegate;
  std::shared_ptr<VembaInterstitialAd> ad;
};

TEST_F(BidExchangeTest, RequestShapeAndHeaders) {
  ad->setBidFloor(0.25);
  ad->load();
  ASSERT_EQ(platform.http.taskCount(), 1U);
  const platform::HttpRequest& request = platform.http.request(0);
  EXPECT_EQ(request.method, "POST");
  EXPECT_EQ(request.url, "https://127.0.0.1:18443/bid");
  EXPECT_EQ(request.timeout, std::chrono::seconds(60));
  EXPECT_EQ(request.cachePolicy, platform::CachePolicy::useProtocolCachePolicy);
  EXPECT_EQ(platform.http.header(0, "Content-Type"), "application/json");
  EXPECT_FALSE(platform.http.header(0, "X-API-Key"));  // not initialised: no header at all

  // The request of a host that sets no privacy signals, byte for byte.
  EXPECT_EQ(request.body,
            R"({"app":{"bundle":"com.example.host","ver":"2.3"},"device":{"connection":"wifi",)"
            R"("ifa":"00000000-0000-0000-0000-000000000000","ip":"","model":"iPhone","os":"iOS",)"
            R"("osv":"17.4.1","ua":"Mozilla\/5.0 (iPhone; CPU iPhone OS 17_4_1 like Mac OS X) )"
            R"(AppleWebKit\/605.1.15 (KHTML, like Gecko) Mobile\/15E148"},)"
            R"("id":"00000000-0000-4000-8000-000000000001","imp":[{"bidfloor":0.25,"id":"1",)"
            R"("interstitial":{},"tagid":"unit-1"}]})");
  const auto body = ads::decodeBidRequestText(request.body.value());
  ASSERT_TRUE(body);
  EXPECT_EQ(logs,
            (std::vector<std::string>{"Loading ad for Unit ID: unit-1",
                                      "Sending Bid Request to: https://127.0.0.1:18443/bid"}));

  VembaSDK::shared().initialize(VembaConfiguration("secret", false));
  ad->load();
  EXPECT_EQ(platform.http.header(1, "X-API-Key"), "secret");
  // Every request carries a fresh id.
  EXPECT_NE(ads::decodeBidRequestText(*platform.http.request(1).body)->id, body->id);

  // Privacy signals set between two loads go with the second, read when its request is built.
  platform.device.advertisingIdValue = platform::Uuid{0x12, 0x34};
  ad->load();
  VembaSDK::shared().setPrivacy({.gdprApplies = true, .limitAdTracking = true});
  ad->load();
  const auto before = ads::decodeBidRequestText(*platform.http.request(2).body);
  const auto after = ads::decodeBidRequestText(*platform.http.request(3).body);
  EXPECT_FALSE(before->regs);
  EXPECT_EQ(before->device.ifa, "12340000-0000-0000-0000-000000000000");
  EXPECT_EQ(after->regs, (ads::Regs{.gdpr = true}));
  EXPECT_EQ(after->device.lmt, true);
  EXPECT_EQ(after->device.ifa, "00000000-0000-0000-0000-000000000000");
}

// One impression earns the price read as a CPM, in micros of the response's currency; a price
// that micros cannot count earns no value at all.
TEST_F(BidExchangeTest, AnImpressionEarnsThePriceAsACpmInMicrosOfTheResponsesCurrency) {
  struct Case {
    double price;
    std::optional<std::string> cur;
    std::optional<AdValue> value;
  };
  const double infinity = std::numeric_limits<double>::infinity();
  const Case cases[] = {
      {1.5, std::nullopt, AdValue{1500, "USD", "estimated"}},
      {2.25, "EUR", AdValue{2250, "EUR", "estimated"}},
      {0.0004, "JPY", AdValue{0, "JPY", "estimated"}},
      {0.0005, std::nullopt, AdValue{1, "USD", "estimated"}},  // to the nearest micro
      {0.0, std::nullopt, AdValue{0, "USD", "estimated"}},
      {9.2e15, std::nullopt, AdValue{9'200'000'000'000'000'000, "USD", "estimated"}},
      {9.3e15, std::nullopt, std::nullopt},  // more micros than a signed 64-bit count holds
      {-0.01, std::nullopt, std::nullopt},
      {infinity, std::nullopt, std::nullopt},
  };
  for (const Case& c : cases) {
    ads::BidExchange exchange(ads::AdFormat{ads::AdFormat::Kind::interstitial, ""}, "unit-1");
    ads::Bid bid{"b", "1", c.price, "https://127.0.0.1/p", std::nullopt, std::nullopt};
    ASSERT_TRUE(
        exchange.handleBidResponse({"r", std::nullopt, {{ads::SeatBid{{bid}}}}, c.cur}).loaded());
    const auto value = exchange.impressionValue();
    EXPECT_EQ(value.hasValue(), c.value.has_value()) << c.price;
    if (value && c.value) {
      EXPECT_EQ(value.value(), *c.value) << c.price;
    }
  }
}

TEST_F(BidExchangeTest, BidFloorIsSentOnlyWhenStrictlyPositive) {
  const double floors[] = {0.0, -1.0, std::numeric_limits<double>::quiet_NaN(), 1e-9};
  for (const double floor : floors) {
    ad->setBidFloor(floor);
    ad->load();
    const auto body =
        ads::decodeBidRequestText(*platform.http.request(platform.http.taskCount() - 1).body);
    EXPECT_EQ(body->imp[0].bidfloor.has_value(), floor > 0) << floor;
  }
}

TEST_F(BidExchangeTest, OutcomesAreClassified) {
  struct Case {
    const char* name;
    long status;
    std::optional<std::string> body;
    const char* domain;  // nullptr: success
    int code;
  };
  const Case cases[] = {
      {"usable bid", 200, bidResponse("https://127.0.0.1/ad.html"), nullptr, 0},
      {"4xx whose body decodes", 404, bidResponse("https://127.0.0.1/ad.html"), nullptr, 0},
      {"no body at all", 200, std::nullopt, "VembaError", 5},
      {"zero-length body", 200, std::string(), "DecodingError", 4864},
      {"500 with empty object", 500, std::string("{}"), "DecodingError", 4865},
      {"type mismatch", 200, std::string(R"({"id":1})"), "DecodingError", 4864},
      {"null id", 200, std::string(R"({"id":null})"), "DecodingError", 4865},
      {"no seatbid", 200, std::string(R"({"id":"r"})"), "VembaError", 6},
      {"empty seatbid", 200, std::string(R"({"id":"r","seatbid":[]})"), "VembaError", 6},
      {"first seat empty, second full", 200,
       std::string(
           R"({"id":"r","seatbid":[{"bid":[]},{"bid":[{"impid":"1","price":1,"adm":"https://a/"}]}]})"),
       "VembaError", 6},
      {"bid without adm", 200,
       std::string(R"({"id":"r","seatbid":[{"bid":[{"impid":"1","price":1}]}]})"), "VembaError", 6},
      {"adm not a URL", 200, bidResponse("not a url"), "VembaError", 6},
      {"adm empty", 200, bidResponse(""), "VembaError", 6},
  };
  for (const Case& c : cases) {
    delegate->calls.clear();
    loadAndAnswer(c.status, c.body);
    ASSERT_EQ(delegate->calls.size(), 1U) << c.name;
    const RecordingDelegate::Call& call = delegate->calls[0];
    if (c.domain == nullptr) {
      EXPECT_EQ(call.name, "adDidLoad") << c.name;
      EXPECT_TRUE(call.isReady) << c.name;  // set before the delegate hears of it
      EXPECT_TRUE(ad->isReady());
    } else {
      EXPECT_EQ(call.name, "adDidFailToLoad") << c.name;
      EXPECT_FALSE(call.isReady) << c.name;
      EXPECT_EQ(call.error.domain, c.domain) << c.name;
      EXPECT_EQ(call.error.code, c.code) << c.name;
      if (call.error.domain == "DecodingError") {
        EXPECT_EQ(logs.back(), "Decoding error: " + call.error.description) << c.name;
      }
    }
  }
}

TEST_F(BidExchangeTest, TransportErrorsKeepTheirCodeAndAreDescribedOnceByTheCore) {
  struct Case {
    int code;
    std::string description;
  };
  const Case cases[] = {
      {platform::UrlErrorCode::timedOut, "The request timed out."},
      // The certificate texts name the endpoint's host, taken from the failing URL.
      {platform::UrlErrorCode::serverCertificateUntrusted,
       "The certificate for this server is invalid. You might be connecting to a server that is "
       "pretending to be \u201C127.0.0.1\u201D which could put your confidential information "
       "at risk."},
      {12345, "An unknown error occurred."},
  };
  for (const Case& c : cases) {
    delegate->calls.clear();
    ad->load();
    platform.http.fail(platform.http.taskCount() - 1, c.code);
    platform.mainQueue.runUntilIdle();
    ASSERT_EQ(delegate->calls.size(), 1U);
    EXPECT_EQ(delegate->calls[0].error, (Error{"URLError", c.code, c.description}));
    EXPECT_EQ(logs.back(), "Bid Request failed: " + c.description);
  }
}

// Without a delegate the ad's state still changes; an ad released after its answer is kept until
// its callback has run (one released before it: AdLoad_test).
TEST_F(BidExchangeTest, AnAnswerChangesTheAdItFindsAliveWithOrWithoutADelegate) {
  ad->setDelegate({});
  loadAndAnswer(200, bidResponse("https://127.0.0.1/ad.html"));
  EXPECT_TRUE(ad->isReady());
  loadAndAnswer(200, std::nullopt);
  EXPECT_FALSE(ad->isReady());

  ad->setDelegate(delegate);
  ad->load();
  platform.http.respondLast(200, bidResponse("https://127.0.0.1/ad.html"));
  const std::weak_ptr<VembaInterstitialAd> weak = std::exchange(ad, nullptr);
  EXPECT_FALSE(weak.expired());  // the queued outcome holds it
  platform.mainQueue.runUntilIdle();
  EXPECT_EQ(delegate->names(), (std::vector<std::string>{"adDidLoad"}));
  EXPECT_TRUE(weak.expired());
}

TEST_F(BidExchangeTest, OverlappingLoadsApplyInArrivalOrderAndAFailureKeepsTheBid) {
  ad->load();
  ad->load();
  platform.http.respond(1, 200,
                        bidResponse("https://127.0.0.1/second.html", "", R"(,"bidid":"b2")"));
  platform.http.respond(0, 200,
                        bidResponse("https://127.0.0.1/first.html", "", R"(,"bidid":"b1")"));
  platform.mainQueue.runUntilIdle();
  EXPECT_EQ(delegate->names(), (std::vector<std::string>{"adDidLoad", "adDidLoad"}));
  EXPECT_EQ(exchangeOf().admURL()->absoluteString(), "https://127.0.0.1/first.html");
  // A failure after them clears the readiness but keeps the bid.
  loadAndAnswer(200, std::string(R"({"id":"r"})"));
  EXPECT_FALSE(ad->isReady());
  EXPECT_EQ(exchangeOf().admURL()->absoluteString(), "https://127.0.0.1/first.html");
  EXPECT_EQ(exchangeOf().bidId(), "b1");
}

TEST_F(BidExchangeTest, BillingUrlRules) {
  struct Step {
    const char* name;
    std::string body;
    std::optional<std::string> expected;
  };
  const std::string base = "https://127.0.0.1:18443/v1/billing";
  // Applied in order to one ad: each step sees what the earlier ones left.
  const Step steps[] = {
      {"fresh ad, no burl, no bidid", bidResponse("https://a/p"), std::nullopt},
      {"burl wins",
       bidResponse("https://a/p", R"(,"burl":"https://b/win?x=1")", R"(,"bidid":"abc")"),
       "https://b/win?x=1"},
      {"no burl and no bidid keeps the earlier one", bidResponse("https://a/p"),
       "https://b/win?x=1"},
      {"bidid builds from the base", bidResponse("https://a/p", "", R"(,"bidid":"abc")"),
       base + "?bidid=abc&win=1"},
      {"unparsable burl falls back to bidid",
       bidResponse("https://a/p", R"(,"burl":"bad url")", R"(,"bidid":"x-1")"),
       base + "?bidid=x-1&win=1"},
      {"bidid that breaks the URL clears it", bidResponse("https://a/p", "", R"(,"bidid":"a b")"),
       std::nullopt},
  };
  for (const Step& step : steps) {
    loadAndAnswer(200, step.body);
    const std::optional<Url> url = exchangeOf().billingURL();
    EXPECT_EQ(url ? std::optional(url->absoluteString()) : std::nullopt, step.expected)
        << step.name;
  }
}

TEST_F(BidExchangeTest, BillingPixelIsAPlainGetOrNothing) {
  VembaSDK::shared().initialize(VembaConfiguration("secret", false));
  loadAndAnswer(200, bidResponse("https://a/p"));
  logs.clear();
  exchangeOf().fireBillingPixel();
  EXPECT_EQ(platform.http.taskCount(), 1U);  // no billing URL: nothing sent
  EXPECT_TRUE(logs.empty());

  loadAndAnswer(200, bidResponse("https://a/p", R"(,"burl":"https://127.0.0.1/bill?b=1")"));
  logs.clear();
  exchangeOf().fireBillingPixel();
  ASSERT_EQ(platform.http.taskCount(), 3U);
  const platform::HttpRequest& pixel = platform.http.request(2);
  EXPECT_EQ(pixel.method, "GET");
  EXPECT_EQ(pixel.url, "https://127.0.0.1/bill?b=1");
  EXPECT_TRUE(pixel.headers.empty());
  EXPECT_FALSE(pixel.body);
  EXPECT_FALSE(platform.http.task(2).completion);
  EXPECT_EQ(logs, (std::vector<std::string>{"Firing Billing Pixel: https://127.0.0.1/bill?b=1"}));
}

TEST_F(BidExchangeTest, InvalidEndpointIsSilent) {
  ads::BidExchange exchange({ads::AdFormat::Kind::rewarded, "Loading: "}, "u",
                            {"https://exa mple/bid", "https://exa mple/v1/billing"});
  EXPECT_TRUE(std::holds_alternative<std::monostate>(exchange.prepareBidRequest("ua", 0.0)));
  EXPECT_TRUE(logs.empty());  // not even the send line
}

TEST_F(BidExchangeTest, UnencodableRequestFailsWithEncodingFailed) {
  // A floor JSON cannot hold (an ad unit that is not UTF-8: AdLoad_test).
  ad->setBidFloor(std::numeric_limits<double>::infinity());
  ad->load();
  platform.mainQueue.runUntilIdle();
  EXPECT_EQ(platform.http.taskCount(), 0U);
  ASSERT_EQ(delegate->calls.size(), 1U);
  EXPECT_EQ(delegate->calls[0].error.domain, "VembaError");
  EXPECT_EQ(delegate->calls[0].error.code, 4);
}

}  // namespace
}  // namespace vemba::tests
