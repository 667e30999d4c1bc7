// A host's own unit tests, written against the public headers alone: a rewarded ad's whole round
// and a checkout that completes, in virtual time (Testing.h's example is the first), and the
// rules of the testing API a host relies on.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "vemba/Vemba.h"
#include "vemba/checkout/Checkout.h"
#include "vemba/checkout/CheckoutSheet.h"
#include "vemba/testing/Testing.h"

namespace {

using vemba::VembaRewardedAd;

// The host's delegate: its game grants a life per reward.
class Rewards final : public vemba::VembaRewardedAdDelegate {
 public:
  void adDidLoad(VembaRewardedAd& ad) override { events.push_back(ad.adUnitId() + ":loaded"); }
  void adDidFailToLoad(VembaRewardedAd& ad, const vemba::Error& error) override {
    events.push_back(ad.adUnitId() + ":" + error.domain + ":" + std::to_string(error.code));
  }
  void adDidShow(VembaRewardedAd& /*ad*/) override { events.emplace_back("shown"); }
  void adDidDismiss(VembaRewardedAd& /*ad*/) override { events.emplace_back("dismissed"); }
  void adDidClick(VembaRewardedAd& /*ad*/) override { events.emplace_back("clicked"); }
  void adDidEarnReward(VembaRewardedAd& /*ad*/, const vemba::VembaReward& reward) override {
    lives += static_cast<int>(reward.amount());
  }
  std::vector<std::string> events;
  int lives = 0;
};

TEST(HostExample, ARewardedAdsWholeRound) {
  vemba::testing::FakePlatform platform;  // first, so it outlives the library's objects
  const auto rewards = std::make_shared<Rewards>();
  const auto ad = VembaRewardedAd::create("level-end");
  ad->setDelegate(rewards);
  platform.respondToBid(vemba::testing::bidResponse("https://ads.example.test/page"));
  ad->load();
  platform.runUntilIdle();
  ad->show();  // from the host's key window
  platform.advance(vemba::testing::kTransitionTime);

  const auto shown = platform.presentedAd();
  ASSERT_TRUE(shown);
  EXPECT_EQ(shown->pageUrl(), "https://ads.example.test/page");
  shown->postClick();
  shown->postOpenUrl("https://shop.example.test/offer");
  shown->postClose();
  platform.advance(vemba::testing::kTransitionTime);
  EXPECT_EQ(rewards->events,
            (std::vector<std::string>{"level-end:loaded", "shown", "clicked", "dismissed"}));
  EXPECT_EQ(rewards->lives, 1);
  EXPECT_EQ(platform.openedUrls(), std::vector<std::string>{"https://shop.example.test/offer"});
  EXPECT_EQ(platform.billingPixels().size(), 1U);
  EXPECT_FALSE(platform.presentedAd());
}

TEST(HostExample, ACheckoutCompletes) {
  vemba::testing::FakePlatform platform;
  std::vector<std::string> orders;
  const auto sheet =
      vemba::checkout::CheckoutSheet(vemba::Url::parse("https://shop.example.test/c/1").value())
          .onComplete([&](const vemba::checkout::CheckoutCompletedEvent& event) {
            orders.push_back(event.orderDetails.id);
          });
  sheet.present(platform.hostScreen());
  platform.runUntilIdle();
  const auto checkout = platform.presentedCheckout();
  ASSERT_TRUE(checkout);
  checkout->finishLoading();
  checkout->postCompleted("1001");
  EXPECT_EQ(orders, std::vector<std::string>{"1001"});
}

// Answers go to the oldest bid request still waiting, else to the next one sent, and arrive on a
// later turn; each platform starts the library afresh.
TEST(HostExample, AnswersMeetBidRequestsInOrderAndEachPlatformStartsAfresh) {
  {
    vemba::testing::FakePlatform platform;
    vemba::VembaSDK::shared().initialize(vemba::VembaConfiguration("key", false));
    vemba::checkout::configure([](vemba::checkout::Configuration& c) { c.title = "Pay"; });
  }
  vemba::testing::FakePlatform platform;
  EXPECT_FALSE(vemba::VembaSDK::shared().apiKey());
  EXPECT_NE(vemba::checkout::configuration().title, "Pay");

  const auto rewards = std::make_shared<Rewards>();
  std::vector<std::shared_ptr<VembaRewardedAd>> ads;
  for (const char* unit : {"first", "second", "third"}) {
    ads.push_back(VembaRewardedAd::create(unit));
    ads.back()->setDelegate(rewards);
  }
  ads[0]->load();
  ads[1]->load();
  platform.respondToBid(200, R"({"id":"r"})");  // no seat, so no bid
  platform.failBid(-1001);
  platform.respondToBid(vemba::testing::bidResponse("https://ads.example.test/page"));
  EXPECT_TRUE(rewards->events.empty());
  platform.runUntilIdle();
  ads[2]->load();
  platform.runUntilIdle();
  EXPECT_EQ(rewards->events, (std::vector<std::string>{"first:VembaError:6",
                                                       "second:URLError:-1001", "third:loaded"}));
  ASSERT_EQ(platform.bidRequests().size(), 3U);
  EXPECT_NE(platform.bidRequests()[2].find(R"("tagid":"third")"), std::string::npos);
}

}  // namespace
