// The local exchange answers as its README promises: the tests and the demo build on these
// answers, so a drift here would make their failures meaningless.
#include <gtest/gtest.h>

#include <string>

#include "CurlHttpClient.h"
#include "HttpTestSupport.h"
#include "LocalExchange.h"

namespace vemba::testing {
namespace {

using linux_platform::CurlHttpClient;
using nlohmann::json;

class LocalExchangeTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { exchange_ = new LocalExchange(); }
  static void TearDownTestSuite() {
    delete exchange_;
    exchange_ = nullptr;
  }
  static LocalExchange& exchange() { return *exchange_; }

  void SetUp() override {
    CurlHttpClient::Options options;
    options.caFile = exchange().caFile();
    client_ = std::make_unique<CurlHttpClient>(options);
  }

  // Posts a bid request for `tagid` and returns the response (status and raw body).
  platform::HttpResponse bid(const std::string& tagid, bool rewarded = false,
                             const std::string& requestId = "req-1") {
    const Outcome outcome =
        fetch(*client_, bidRequest(exchange().origin(), requestId, tagid, rewarded));
    const platform::HttpResponse* answer = response(outcome);
    EXPECT_NE(answer, nullptr) << tagid;
    return answer != nullptr ? *answer : platform::HttpResponse{};
  }
  json bidJson(const std::string& tagid, bool rewarded = false) {
    const platform::HttpResponse answer = bid(tagid, rewarded);
    EXPECT_EQ(answer.statusCode, 200) << tagid;
    return json::parse(answer.body.value_or("null"));
  }

  std::unique_ptr<CurlHttpClient> client_;

 private:
  static inline LocalExchange* exchange_ = nullptr;
};

TEST_F(LocalExchangeTest, NormalBidNamesThePageOfTheFormatAndABillingUrl) {
  for (const bool rewarded : {false, true}) {
    const json answer = bidJson("unit-normal", rewarded);
    EXPECT_EQ(answer.at("id"), "req-1");
    const std::string bidid = answer.at("bidid");
    const json& first = answer.at("seatbid").at(0).at("bid").at(0);
    EXPECT_EQ(first.at("impid"), "1");
    EXPECT_TRUE(first.at("price").is_number());
    EXPECT_EQ(first.at("adm"),
              exchange().origin() + (rewarded ? "/ads/rewarded.html" : "/ads/interstitial.html"));
    EXPECT_EQ(first.at("burl"), exchange().origin() + "/v1/billing?bidid=" + bidid + "&win=1");
  }
}

TEST_F(LocalExchangeTest, ConventionBehavioursShapeTheAnswer) {
  const json nobid = bidJson("exchange:nobid");
  EXPECT_EQ(nobid.at("seatbid"), json::array());

  const json noseat = bidJson("exchange:noseat");
  EXPECT_EQ(noseat.at("id"), "req-1");
  EXPECT_FALSE(noseat.contains("seatbid"));

  EXPECT_EQ(bidJson("exchange:emptyseat").at("seatbid").at(0).at("bid"), json::array());

  const json firstEmpty = bidJson("exchange:firstseatempty");
  EXPECT_EQ(firstEmpty.at("seatbid").at(0).at("bid"), json::array());
  EXPECT_TRUE(firstEmpty.at("seatbid").at(1).at("bid").at(0).contains("adm"));

  EXPECT_FALSE(bidJson("exchange:noadm").at("seatbid").at(0).at("bid").at(0).contains("adm"));
  EXPECT_EQ(bidJson("exchange:badadm").at("seatbid").at(0).at("bid").at(0).at("adm"),
            "not a url <with> spaces");

  const json noburl = bidJson("exchange:noburl");
  EXPECT_TRUE(noburl.contains("bidid"));
  EXPECT_FALSE(noburl.at("seatbid").at(0).at("bid").at(0).contains("burl"));

  const json neither = bidJson("exchange:noburl-nobidid");
  EXPECT_FALSE(neither.contains("bidid"));
  EXPECT_FALSE(neither.at("seatbid").at(0).at("bid").at(0).contains("burl"));

  EXPECT_TRUE(bidJson("exchange:wrongtypes").at("id").is_number());

  const platform::HttpResponse malformed = bid("exchange:malformed");
  EXPECT_EQ(malformed.statusCode, 200);
  EXPECT_FALSE(json::accept(malformed.body.value_or("")));

  const platform::HttpResponse slow = bid("exchange:slow?seconds=0.2");
  EXPECT_EQ(json::parse(*slow.body).at("id"), "req-1");
}

TEST_F(LocalExchangeTest, ControlSetsAndClearsABehaviourPerAdUnit) {
  exchange().setBehaviour("unit-controlled", "nobid");
  EXPECT_EQ(bidJson("unit-controlled").at("seatbid"), json::array());
  EXPECT_EQ(bidJson("unit-other").at("seatbid").size(), 1u);

  exchange().setBehaviour("unit-controlled", "error500", {{"status", 503}});
  EXPECT_EQ(bid("unit-controlled").statusCode, 503);

  exchange().clearBehaviour("unit-controlled");
  EXPECT_EQ(bidJson("unit-controlled").at("seatbid").size(), 1u);

  EXPECT_THROW(exchange().setBehaviour("unit-controlled", "no-such-behaviour"), std::runtime_error);
}

TEST_F(LocalExchangeTest, RecordsBidsAndBillingHitsWithTheirDetails) {
  exchange().clearLog();
  const json answer = bidJson("unit-logged");
  const std::string burl = answer.at("seatbid").at(0).at("bid").at(0).at("burl");
  platform::HttpRequest billing;
  billing.url = burl;
  ASSERT_NE(response(fetch(*client_, billing)), nullptr);

  const std::vector<json> bids = exchange().log("bid");
  ASSERT_EQ(bids.size(), 1u);
  EXPECT_EQ(bids[0].at("adUnit"), "unit-logged");
  EXPECT_EQ(bids[0].at("format"), "interstitial");
  EXPECT_EQ(bids[0].at("behaviour"), "bid");

  const std::vector<json> hits = exchange().waitForLog("billing", 1, std::chrono::seconds(5));
  ASSERT_EQ(hits.size(), 1u);
  EXPECT_EQ(hits[0].at("method"), "GET");
  EXPECT_EQ(hits[0].at("queryItems"),
            json::array({json::array({"bidid", answer.at("bidid")}), json::array({"win", "1"})}));
}

TEST_F(LocalExchangeTest, ServesTheAdPagesThatTalkOnTheVembaChannel) {
  for (const char* page : {"/ads/interstitial.html", "/ads/rewarded.html"}) {
    platform::HttpRequest request;
    request.url = exchange().origin() + page;
    const Outcome outcome = fetch(*client_, request);
    ASSERT_NE(response(outcome), nullptr);
    EXPECT_EQ(response(outcome)->statusCode, 200) << page;
    EXPECT_NE(response(outcome)->body->find("messageHandlers.vemba"), std::string::npos) << page;
  }
  platform::HttpRequest escape;
  escape.url = exchange().origin() + "/ads/%2e%2e/%2e%2e/exchange.py";
  EXPECT_EQ(response(fetch(*client_, escape))->statusCode, 404);
}

TEST(LocalExchangeStartTest, BehavioursFileAppliesFromTheStart) {
  LocalExchange::Options options;
  options.behaviours = json{{"*", "noseat"}, {"unit-slow", {{"behaviour", "nobid"}}}};
  LocalExchange exchange(options);
  CurlHttpClient::Options clientOptions;
  clientOptions.caFile = exchange.caFile();
  CurlHttpClient client(clientOptions);

  const Outcome anyUnit = fetch(client, bidRequest(exchange.origin(), "r", "unit-any"));
  ASSERT_NE(response(anyUnit), nullptr);
  EXPECT_FALSE(json::parse(*response(anyUnit)->body).contains("seatbid"));
  const Outcome named = fetch(client, bidRequest(exchange.origin(), "r", "unit-slow"));
  ASSERT_NE(response(named), nullptr);
  EXPECT_EQ(json::parse(*response(named)->body).at("seatbid"), json::array());
}

TEST(LocalExchangeStartTest, ATakenPortIsReportedNotIgnored) {
  LocalExchange first;
  LocalExchange::Options options;
  options.port = first.port();
  EXPECT_THROW(LocalExchange second(options), std::runtime_error);
}

}  // namespace
}  // namespace vemba::testing
