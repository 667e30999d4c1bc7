// The ad load path end to end on the real Linux backend (libcurl worker thread, GLib main loop)
// against the local exchange on the build's exchange origin (127.0.0.1:18443): what the server
// receives, TLS trust through SSL_CERT_FILE, the failure classes, and the billing pixel.
#include <glib.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "LocalExchange.h"
#include "ads/bidding/BidExchange.h"
#include "ads/core/UserAgentFetcher.h"
#include "ads/core/VembaSDKForTesting.h"
#include "platform/MainQueue.h"
#include "platform/Services.h"
#include "vemba/Vemba.h"

namespace vemba::testing {

using exchange::LocalExchange;
namespace {

constexpr int kExchangePort = 18443;

// Records the first load callback, the thread it came on and the ad's readiness then.
class LoadRecorder : public VembaInterstitialAdDelegate, public VembaRewardedAdDelegate {
 public:
  int calls = 0;
  std::string name;
  Error error;
  bool readyAtCall = false;
  bool onMainThread = false;

  void adDidLoad(VembaInterstitialAd& ad) override { record("adDidLoad", ad.isReady(), {}); }
  void adDidFailToLoad(VembaInterstitialAd& ad, const Error& e) override {
    record("adDidFailToLoad", ad.isReady(), e);
  }
  void adDidShow(VembaInterstitialAd&) override {}
  void adDidDismiss(VembaInterstitialAd&) override {}
  void adDidClick(VembaInterstitialAd&) override {}
  void adDidLoad(VembaRewardedAd& ad) override { record("adDidLoad", ad.isReady(), {}); }
  void adDidFailToLoad(VembaRewardedAd& ad, const Error& e) override {
    record("adDidFailToLoad", ad.isReady(), e);
  }
  void adDidShow(VembaRewardedAd&) override {}
  void adDidDismiss(VembaRewardedAd&) override {}
  void adDidClick(VembaRewardedAd&) override {}
  void adDidEarnReward(VembaRewardedAd&, const VembaReward&) override {}

 private:
  void record(const char* callback, bool ready, const Error& e) {
    ++calls;
    name = callback;
    error = e;
    readyAtCall = ready;
    onMainThread = platform::services().mainQueue->isMainThread();
  }
};

// Iterates the default main context until `done` holds or `limit` passes.
template <typename Predicate>
bool runMainLoopUntil(Predicate done, std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!done()) {
    if (std::chrono::steady_clock::now() >= deadline) {
      return false;
    }
    g_main_context_iteration(nullptr, FALSE);
    g_usleep(500);
  }
  return true;
}

class AdLoadIntegrationTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    LocalExchange::Options options;
    options.port = kExchangePort;
    exchange_ = new LocalExchange(options);
    // The backend's HTTP client reads the trusted bundle when it is created, on first use.
    setenv("SSL_CERT_FILE", exchange_->caFile().c_str(), 1);
  }
  static void TearDownTestSuite() {
    delete exchange_;
    exchange_ = nullptr;
  }
  void SetUp() override {
    ads::resetVembaSdkForTesting();
    exchange_->clearLog();
  }

  template <typename Ad>
  std::shared_ptr<LoadRecorder> load(const std::shared_ptr<Ad>& ad) {
    auto recorder = std::make_shared<LoadRecorder>();
    ad->setDelegate(recorder);
    ad->load();
    EXPECT_TRUE(runMainLoopUntil([&] { return recorder->calls > 0; }, std::chrono::seconds(20)));
    return recorder;
  }

  static LocalExchange* exchange_;
};

LocalExchange* AdLoadIntegrationTest::exchange_ = nullptr;

TEST_F(AdLoadIntegrationTest, InterstitialRequestAsReceivedByTheServer) {
  VembaSDK::shared().initialize(VembaConfiguration("key-123", false));
  auto ad = VembaInterstitialAd::create("unit-i");
  const auto recorder = load(ad);
  EXPECT_EQ(recorder->name, "adDidLoad");
  EXPECT_TRUE(recorder->readyAtCall);
  EXPECT_TRUE(recorder->onMainThread);

  const auto bids = exchange_->log("bid");
  ASSERT_EQ(bids.size(), 1U);
  const nlohmann::json& entry = bids[0];
  EXPECT_EQ(entry["method"], "POST");
  EXPECT_EQ(entry["path"], "/bid");
  EXPECT_EQ(LocalExchange::header(entry, "Content-Type"), "application/json");
  EXPECT_EQ(LocalExchange::header(entry, "X-API-Key"), "key-123");
  const nlohmann::json body = nlohmann::json::parse(entry["body"].get<std::string>());
  EXPECT_EQ(body["imp"].size(), 1U);
  EXPECT_EQ(body["imp"][0]["id"], "1");
  EXPECT_EQ(body["imp"][0]["tagid"], "unit-i");
  EXPECT_EQ(body["imp"][0]["interstitial"], nlohmann::json::object());
  EXPECT_FALSE(body["imp"][0].contains("rewarded"));
  EXPECT_FALSE(body["imp"][0].contains("bidfloor"));
  EXPECT_EQ(body["device"]["os"], "iOS");
  EXPECT_EQ(body["device"]["ip"], "");
  EXPECT_EQ(body["device"]["connection"], "wifi");
  EXPECT_EQ(body["device"]["model"], "Linux");
  EXPECT_EQ(body["device"]["ifa"], "00000000-0000-0000-0000-000000000000");
  EXPECT_EQ(body["device"]["ua"], *UserAgentFetcher::shared().cachedUserAgent());
  // Slashes travel escaped on the wire.
  EXPECT_NE(entry["body"].get<std::string>().find("Mozilla\\/5.0"), std::string::npos);
}

TEST_F(AdLoadIntegrationTest, RewardedWithFloorAndNoKeyBeforeInitialize) {
  auto ad = VembaRewardedAd::create("unit-r");
  ad->setBidFloor(0.5);
  const auto recorder = load(ad);
  EXPECT_EQ(recorder->name, "adDidLoad");
  const auto bids = exchange_->log("bid");
  ASSERT_EQ(bids.size(), 1U);
  EXPECT_FALSE(LocalExchange::header(bids[0], "X-API-Key"));
  const nlohmann::json body = nlohmann::json::parse(bids[0]["body"].get<std::string>());
  EXPECT_EQ(body["imp"][0]["rewarded"], nlohmann::json::object());
  EXPECT_FALSE(body["imp"][0].contains("interstitial"));
  EXPECT_EQ(body["imp"][0]["bidfloor"], 0.5);
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
    const auto recorder = load(ad);
    EXPECT_EQ(recorder->calls, 1) << c.behaviour;
    EXPECT_EQ(recorder->name, "adDidFailToLoad") << c.behaviour;
    EXPECT_FALSE(recorder->readyAtCall) << c.behaviour;
    EXPECT_TRUE(recorder->onMainThread) << c.behaviour;
    EXPECT_EQ(recorder->error.domain, c.domain) << c.behaviour;
    EXPECT_EQ(recorder->error.code, c.code) << c.behaviour << ": " << recorder->error.description;
    // Nothing arrives later either.
    runMainLoopUntil([] { return false; }, std::chrono::milliseconds(50));
    EXPECT_EQ(recorder->calls, 1) << c.behaviour;
  }
}

TEST_F(AdLoadIntegrationTest, AdReleasedInFlightGetsNoCallback) {
  exchange_->setBehaviour("slow-unit", "slow", {{"seconds", 1.0}});
  auto recorder = std::make_shared<LoadRecorder>();
  {
    auto ad = VembaInterstitialAd::create("slow-unit");
    ad->setDelegate(recorder);
    ad->load();
  }
  // The request must have gone out, or the silence below would prove nothing.
  ASSERT_EQ(exchange_->waitForLog("bid", 1, std::chrono::seconds(10)).size(), 1U);
  runMainLoopUntil([] { return false; }, std::chrono::milliseconds(2000));
  EXPECT_EQ(recorder->calls, 0);
}

// Loads its ad again from inside each load callback until `reloads` is spent, recording the
// sequence of callbacks and the readiness at each.
class ReloadingRecorder : public LoadRecorder {
 public:
  std::vector<std::string> sequence;
  int reloads = 0;
  std::weak_ptr<VembaInterstitialAd> ad;

  using LoadRecorder::adDidFailToLoad;
  using LoadRecorder::adDidLoad;
  void adDidLoad(VembaInterstitialAd& loaded) override {
    LoadRecorder::adDidLoad(loaded);
    note("adDidLoad", loaded.isReady());
  }
  void adDidFailToLoad(VembaInterstitialAd& failed, const Error& e) override {
    LoadRecorder::adDidFailToLoad(failed, e);
    note("adDidFailToLoad", failed.isReady());
  }

 private:
  void note(const std::string& callback, bool ready) {
    sequence.push_back(callback + (ready ? " ready" : " not ready"));
    if (reloads > 0) {
      --reloads;
      ad.lock()->load();
    }
  }
};

TEST_F(AdLoadIntegrationTest, LoadAgainFromInsideTheCallbacksOnTheRealLoop) {
  struct Case {
    const char* behaviour;
    const char* expected;
  };
  const Case cases[] = {{"bid", "adDidLoad ready"}, {"nobid", "adDidFailToLoad not ready"}};
  for (const Case& c : cases) {
    const std::string unit = std::string("reload-") + c.behaviour;
    exchange_->setBehaviour(unit, c.behaviour);
    auto ad = VembaInterstitialAd::create(unit);
    auto recorder = std::make_shared<ReloadingRecorder>();
    recorder->reloads = 2;
    recorder->ad = ad;
    ad->setDelegate(recorder);
    ad->load();
    ASSERT_TRUE(runMainLoopUntil([&] { return recorder->calls == 3; }, std::chrono::seconds(20)))
        << c.behaviour;
    runMainLoopUntil([] { return false; }, std::chrono::milliseconds(50));
    EXPECT_EQ(recorder->sequence, std::vector<std::string>(3, c.expected)) << c.behaviour;
    EXPECT_EQ(exchange_->log("bid").size(), 3U) << c.behaviour;
    exchange_->clearLog();
  }
}

TEST_F(AdLoadIntegrationTest, BillingPixelReachesTheServerWithoutTheKey) {
  VembaSDK::shared().initialize(VembaConfiguration("key-b", false));
  exchange_->setBehaviour("bill-unit", "bid", {{"bidid", "abc"}});
  auto ad = VembaInterstitialAd::create("bill-unit");
  ASSERT_EQ(load(ad)->name, "adDidLoad");
  ads::AdAccess::exchange(*ad).fireBillingPixel();
  const auto hits = exchange_->waitForLog("billing", 1, std::chrono::seconds(10));
  ASSERT_EQ(hits.size(), 1U);
  EXPECT_EQ(hits[0]["method"], "GET");
  EXPECT_FALSE(LocalExchange::header(hits[0], "X-API-Key"));
  EXPECT_NE(hits[0]["path"].get<std::string>().find("/v1/billing"), std::string::npos);
}

}  // namespace
}  // namespace vemba::testing
