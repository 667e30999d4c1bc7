// Showing both ad formats on the fake user interface: the silent refusals, the order of the
// presentation, the billing pixel and the delegate calls, and the reward on every close.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "AdTestSupport.h"
#include "FakeScreen.h"
#include "FakeView.h"
#include "FakeWebView.h"
#include "RecordingDelegate.h"
#include "unit/CommaDecimalLocale.h"

namespace vemba::tests {
namespace {

using namespace std::chrono_literals;
using vemba::testing::kTransitionTime;

constexpr const char* kPage = "https://127.0.0.1/creative.html";
constexpr const char* kBilling = "https://127.0.0.1/v1/billing?bid=7";

template <typename Ad>
class AdShowTest : public AdTest {
 protected:
  void SetUp() override {
    ad = Ad::create("unit-7");
    ad->setDelegate(delegate);
  }

  // Loads the ad with a bid for kPage billed at kBilling.
  void load() {
    fakePlatform.respondToBid(vemba::testing::bidResponse(kPage, kBilling));
    ad->load();
    drain();
    delegate->calls.clear();
  }
  // Loads, shows, and lets the presentation finish.
  void loadAndShow() {
    load();
    ad->show(host);
    advance(kTransitionTime);
  }
  vemba::testing::PresentedAd shown() { return fakePlatform.presentedAd().value(); }
  std::size_t billingHits() const { return fakePlatform.billingPixels().size(); }
  // The ad's screen as presented from the host, with its loaded web view.
  fake::FakeScreen& adScreen() { return dynamic_cast<fake::FakeScreen&>(*host->presentedScreen()); }
  fake::FakeWebView& adWebView() {
    return dynamic_cast<fake::FakeWebView&>(
        *fake::FakeViewState::of(adScreen().view()).subviewList.at(0));
  }
  std::vector<std::string> closeSequence() const {
    if constexpr (std::is_same_v<Ad, VembaRewardedAd>) {
      return {"adDidEarnReward(1,reward)", "adDidDismiss"};
    } else {
      return {"adDidDismiss"};
    }
  }

  std::shared_ptr<Ad> ad;
  std::shared_ptr<RecordingDelegate> delegate = std::make_shared<RecordingDelegate>();
  const std::shared_ptr<platform::Screen> host = platform::Screen::of(fakePlatform.hostScreen());
};

using Formats = ::testing::Types<VembaInterstitialAd, VembaRewardedAd>;
TYPED_TEST_SUITE(AdShowTest, Formats);

// Each show that presents nothing tells the delegate once, on a later turn, with its code; the
// ad stays as it was.
TYPED_TEST(AdShowTest, AShowThatPresentsNothingSaysWhy) {
  const auto failsWith = [this](VembaShowErrorCode code,
                                const std::shared_ptr<platform::Screen>& from, bool staysReady) {
    SCOPED_TRACE(static_cast<int>(code));
    this->delegate->optionalCalls.clear();
    const std::size_t views = this->platform.ui.webViews.size();
    this->ad->show(from);
    EXPECT_TRUE(this->delegate->optionalCalls.empty()) << "never inside show()";
    this->drain();
    EXPECT_EQ(this->delegate->optionalCalls,
              std::vector<std::string>{"failToShow:" + std::to_string(static_cast<int>(code))});
    EXPECT_EQ(this->ad->isReady(), staysReady);
    EXPECT_EQ(this->platform.ui.webViews.size(), views);
  };
  failsWith(VembaShowErrorCode::notReady, this->host, false);  // before any load

  this->load();
  this->platform.application.windowList.clear();
  failsWith(VembaShowErrorCode::noScreen, nullptr, true);  // no key window to find a screen in
  // A screen that already presents another would refuse: the bid is kept, with an error line.
  this->host->presentScreen(this->platform.ui.createScreen(), false, {});
  failsWith(VembaShowErrorCode::noScreen, this->host, true);
  ASSERT_EQ(this->platform.log.lines.size(), 1U);
  EXPECT_EQ(this->platform.log.lines[0].severity, platform::LogSeverity::error);
  this->host->dismiss(false, {});
  this->drain();

  // A failed load after a success: the old page is still stored, but the ad is not ready.
  this->ad->load();
  this->platform.http.respondLast(500, std::nullopt);
  this->drain();
  failsWith(VembaShowErrorCode::notReady, this->host, false);
  EXPECT_EQ(this->delegate->names(), std::vector<std::string>{"adDidFailToLoad"});

  // Shown once: the second show finds the bid spent.
  this->loadAndShow();
  failsWith(VembaShowErrorCode::notReady, this->platform.ui.createScreen(), false);
}

// With a lifetime, a loaded ad unshown for that long expires once; a show just before it does not.
TYPED_TEST(AdShowTest, ALoadedAdExpiresAfterItsLifetimeUnshown) {
  VembaSDK::shared().initialize([] {
    VembaConfiguration configuration("key", false);
    configuration.adLifetimeSeconds = 60;
    return configuration;
  }());
  this->load();
  this->advance(59'999ms);
  this->ad->show(this->host);
  this->advance(kTransitionTime + 1s);
  EXPECT_EQ(this->delegate->names(), std::vector<std::string>{"adDidShow"});

  this->load();
  this->advance(30s);
  this->load();  // the first load's timer must not expire the second's bid early
  this->advance(59'999ms);
  EXPECT_TRUE(this->ad->isReady());
  this->advance(1ms);
  EXPECT_FALSE(this->ad->isReady());
  this->advance(120s);
  EXPECT_EQ(this->delegate->optionalCalls,
            (std::vector<std::string>{"impression:1500:USD:estimated", "expire"}));
  this->delegate->optionalCalls.clear();
  this->ad->show(this->host);
  this->drain();
  EXPECT_EQ(this->delegate->optionalCalls, std::vector<std::string>{"failToShow:3"});
}

TYPED_TEST(AdShowTest, PresentsFullScreenThenShowsThenBillsAndRecordsTheImpression) {
  VembaSDK::shared().setApplicationMuted(true);
  this->load();
  this->ad->show(this->host);
  EXPECT_FALSE(this->ad->isReady());  // spent before the presentation
  fake::FakeWebView& webView = this->adWebView();
  ASSERT_EQ(webView.loads.size(), 1U);
  EXPECT_EQ(webView.loads[0].url.absoluteString(), kPage);
  EXPECT_TRUE(webView.muted);
  EXPECT_TRUE(this->delegate->calls.empty());
  EXPECT_EQ(this->billingHits(), 0U);
  // A load whose bid arrives during the transition does not change what the shown one earned.
  this->fakePlatform.respondToBid(
      R"({"id":"r2","cur":"EUR","seatbid":[{"bid":[{"id":"b2","impid":"1","price":9.25,)"
      R"("adm":"https://127.0.0.1/next.html"}]}]})");
  this->ad->load();
  this->drain();

  this->advance(kTransitionTime);
  EXPECT_EQ(this->delegate->names(), (std::vector<std::string>{"adDidLoad", "adDidShow"}));
  EXPECT_EQ(this->billingHits(), 1U);
  EXPECT_EQ(this->delegate->optionalCalls,
            std::vector<std::string>{"impression:1500:USD:estimated"});
  VembaSDK::shared().setApplicationMuted(false);  // the page on screen follows
  EXPECT_FALSE(webView.muted);

  this->ad->show(this->host);  // the screen is taken: the new bid is kept
  EXPECT_EQ(this->platform.ui.webViews.size(), 1U);
  EXPECT_EQ(this->billingHits(), 1U);
}

TYPED_TEST(AdShowTest, BillsWithoutADelegateToo) {
  this->ad->setDelegate({});
  this->loadAndShow();
  EXPECT_EQ(this->billingHits(), 1U);
}

TYPED_TEST(AdShowTest, CloseButtonPageCloseAndEscapeDismissThenReport) {
  for (const std::string closer : {"button", "page", "escape", "button after two deaths"}) {
    SCOPED_TRACE(closer);
    this->loadAndShow();
    this->delegate->calls.clear();

    if (closer == "button after two deaths") {
      this->adWebView().terminateWebContentProcess();  // reloaded: tested with AdScreen_test
      this->drain();
      this->adWebView().terminateWebContentProcess();
      this->shown().pressClose();
    } else if (closer == "page") {
      this->shown().postClose();
    } else if (closer == "button") {
      this->shown().pressClose();
    } else {
      EXPECT_TRUE(this->adScreen().pressEscape());
    }
    // The reward (rewarded only) comes at once; the dismissal is reported once it has finished.
    std::vector<std::string> immediate = this->closeSequence();
    immediate.pop_back();
    EXPECT_EQ(this->delegate->names(), immediate);
    EXPECT_NE(this->host->presentedScreen(), nullptr);
    this->advance(kTransitionTime);
    EXPECT_EQ(this->delegate->names(), this->closeSequence());
    EXPECT_EQ(this->host->presentedScreen(), nullptr);
  }
}

TYPED_TEST(AdShowTest, OnePresentationHasOneCloseHoweverManyArrive) {
  // The second show repeats the first after a close; the third has a checkout over the ad,
  // whose bursts of closes dismiss only the checkout.
  for (const int show : {1, 2, 3}) {
    SCOPED_TRACE(show);
    this->loadAndShow();
    const std::weak_ptr<platform::Screen> adScreen = this->host->presentedScreen();
    auto page = this->shown();
    this->delegate->calls.clear();
    const auto burst = [this, &page] {
      for (int i = 0; i < 1000; ++i) {
        page.postClose();
      }
      page.pressClose();
      this->advance(kTransitionTime);
    };
    if (show == 3) {
      page.postOpenCheckout("https://shop.test/c/1");
      this->advance(kTransitionTime);
      ASSERT_TRUE(this->fakePlatform.presentedCheckout());
      burst();
      EXPECT_FALSE(this->fakePlatform.presentedCheckout());
      EXPECT_TRUE(this->delegate->calls.empty());
    }

    // A burst from the page and the button, all before the dismissal has finished.
    burst();
    // The page outlives the screen for a moment: its last words reach nobody.
    page.postClose();
    this->advance(kTransitionTime);

    EXPECT_EQ(this->delegate->names(), this->closeSequence());
    EXPECT_TRUE(adScreen.expired());  // the screen, and the controller that owns it, are gone
  }
}

TYPED_TEST(AdShowTest, AnAdReleasedWhileShownTellsNobody) {
  this->load();
  this->ad->show(this->host);
  std::weak_ptr<TypeParam> weak = this->ad;
  this->ad.reset();
  EXPECT_TRUE(weak.expired());
  this->advance(kTransitionTime);
  this->shown().pressClose();
  this->advance(kTransitionTime);
  EXPECT_TRUE(this->delegate->calls.empty());
  EXPECT_NE(this->host->presentedScreen(), nullptr);  // nobody is left to dismiss it
}

TYPED_TEST(AdShowTest, WhatADelegateThrowsStopsInsideTheLibrary) {
  this->delegate->throws = true;
  this->loadAndShow();
  this->shown().postClick();
  this->shown().pressClose();
  this->advance(kTransitionTime);
  std::vector<std::string> expected{"adDidShow", "adDidClick"};
  const std::vector<std::string> close = this->closeSequence();
  expected.insert(expected.end(), close.begin(), close.end());
  EXPECT_EQ(this->delegate->names(), expected);
  // One error line per call, adDidLoad's included, and the ad went on as if each had returned.
  EXPECT_EQ(this->platform.log.lines.size(), expected.size() + 1);
  EXPECT_EQ(this->host->presentedScreen(), nullptr);
}

// A host's subclass overrides the readers; the load and show paths call the overrides.
class HostInterstitial final : public VembaInterstitialAd {
 public:
  using VembaInterstitialAd::VembaInterstitialAd;
  double bidFloor() const override { return 2.5; }
  bool isReady() const override { return allowed && VembaInterstitialAd::isReady(); }
  bool allowed = false;
};

TEST_F(AdTest, AHostSubclassesReadersAreTheOnesTheLoadAndShowPathsCall) {
  const CommaDecimalLocale comma;  // the floor keeps its point
  const auto ad = std::make_shared<HostInterstitial>("unit-7");
  ad->load();
  ASSERT_EQ(platform.http.taskCount(), 1U);
  EXPECT_NE(platform.http.request(0).body->find(R"("bidfloor":2.5)"), std::string::npos);
  platform.http.respondLast(200, bidResponse(kPage));
  drain();
  const std::shared_ptr<platform::Screen> host = platform.ui.createScreen();
  ad->show(host);
  EXPECT_EQ(host->presentedScreen(), nullptr);
  ad->allowed = true;
  ad->show(host);
  EXPECT_NE(host->presentedScreen(), nullptr);
}

}  // namespace
}  // namespace vemba::tests
