// The ad load path end to end on the real Linux backend (libcurl worker thread, GLib main loop)
// against the local exchange on the build's exchange origin (127.0.0.1:18443): what the server
// receives, TLS trust through SSL_CERT_FILE, the failure classes and the billing pixel.
// (Loading again from inside the callbacks is unit-tested on the fake queue, which
// GlibMainQueue_test shows dispatching as the real one does.)
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "ExchangeTest.h"
#include "LocalExchange.h"
#include "MainLoop.h"
#include "ads/core/UserAgentFetcher.h"
#include "ads/core/VembaSDKForTesting.h"
#include "ads/formats/BidExchangeForTesting.h"
#include "unit/ads/RecordingDelegate.h"
#include "vemba/Vemba.h"

namespace vemba::tests {

using exchange::LocalExchange;
namespace {

// The exchange origin the library is built against.
class AdLoadIntegrationTest : public ExchangeTest</*Port=*/18443, /*NeedsDisplay=*/false> {
 protected:
  void SetUp() override {
    ads::resetVembaSdkForTesting();
    ExchangeTest::SetUp();
  }

  // Loads `ad` and returns its first load callback, which must come on the main thread.
  template <typename Ad>
  RecordingDelegate::Call load(const std::shared_ptr<Ad>& ad) {
    auto recorder = std::make_shared<RecordingDelegate>();
    ad->setDelegate(recorder);
    ad->load();
    if (!runMainLoopUntil([&] { return !recorder->calls.empty(); })) {
      ADD_FAILURE() << "no load callback";
      return {};
    }
    // Nothing arrives later either.
    runMainLoopFor(std::chrono::milliseconds(50));
    EXPECT_EQ(recorder->calls.size(), 1U) << ::testing::PrintToString(recorder->names());
    EXPECT_EQ(recorder->calls[0].thread, std::this_thread::get_id());
    return recorder->calls[0];
  }
};

TEST_F(AdLoadIntegrationTest, InterstitialRequestAsReceivedByTheServer) {
  VembaSDK::shared().initialize(VembaConfiguration("key-123", false));
  auto ad = VembaInterstitialAd::create("unit-i");
  const RecordingDelegate::Call loaded = load(ad);
  EXPECT_EQ(loaded.name, "adDidLoad");
  EXPECT_TRUE(loaded.isReady);

  const auto bids = exchange_->log("bid");
  ASSERT_EQ(bids.size(), 1U);
  const nlohmann::json& entry = bids[0];
  EXPECT_EQ(LocalExchange::header(entry, "X-API-Key"), "key-123");
  // The body's shape, privacy signals and escapes are the core's (unit-tested); the device
  // values come from this backend.
  const nlohmann::json body = nlohmann::json::parse(entry["body"].get<std::string>());
  EXPECT_EQ(body["imp"][0]["tagid"], "unit-i");
  EXPECT_EQ(body["device"]["model"], "Linux");
  EXPECT_EQ(body["device"]["ua"], *UserAgentFetcher::shared().cachedUserAgent());

  // The billing pixel goes out as a GET without the key.
  ads::BidExchangeForTesting::of(*ad).fireBillingPixel();
  const auto hits = exchange_->waitForLog("billing", 1, std::chrono::seconds(10));
  ASSERT_EQ(hits.size(), 1U);
  EXPECT_EQ(hits[0]["method"], "GET");
  EXPECT_FALSE(LocalExchange::header(hits[0], "X-API-Key"));
  EXPECT_NE(hits[0]["path"].get<std::string>().find("/v1/billing"), std::string::npos);
}

TEST_F(AdLoadIntegrationTest, FailureClassesReachTheDelegateOnce) {
  struct Case {
    const char* behaviour;
    const char* domain;
    int code;
  };
  // One row per failure class as the wire produces it; the classification itself is unit-tested.
  const Case cases[] = {
      {"nobid", "VembaError", 6},
      {"error500", "DecodingError", 4865},
      {"drop", "URLError", -1005},
  };
  for (const Case& c : cases) {
    const std::string unit = std::string("fail-") + c.behaviour;
    exchange_->setBehaviour(unit, c.behaviour);
    auto ad = VembaInterstitialAd::create(unit);
    SCOPED_TRACE(c.behaviour);
    const RecordingDelegate::Call failed = load(ad);
    EXPECT_EQ(failed.name, "adDidFailToLoad");
    EXPECT_FALSE(failed.isReady);
    EXPECT_EQ(failed.error.domain, c.domain);
    EXPECT_EQ(failed.error.code, c.code) << failed.error.description;
  }
}

TEST_F(AdLoadIntegrationTest, AdReleasedInFlightGetsNoCallback) {
  exchange_->setBehaviour("slow-unit", "slow", {{"seconds", 1.0}});
  auto recorder = std::make_shared<RecordingDelegate>();
  {
    auto ad = VembaInterstitialAd::create("slow-unit");
    ad->setDelegate(recorder);
    ad->load();
  }
  // The request must have gone out, or the silence below would prove nothing.
  ASSERT_EQ(exchange_->waitForLog("bid", 1, std::chrono::seconds(10)).size(), 1U);
  runMainLoopFor(std::chrono::milliseconds(2000));
  EXPECT_TRUE(recorder->calls.empty());
}

}  // namespace
}  // namespace vemba::tests
