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

namespace vemba::testing {
namespace {

using namespace std::chrono_literals;

constexpr const char* kPage = "https://127.0.0.1/creative.html";
constexpr const char* kBilling = "https://127.0.0.1/v1/billing?bid=7";

template <typename Ad>
class AdShowTest : public AdTest {
 protected:
  void SetUp() override {
    ad = Ad::create("unit-7");
    ad->setDelegate(delegate);
    host = platform.ui.createScreen();
  }

  // Loads the ad with a bid for kPage billed at kBilling.
  void load() {
    ad->load();
    platform.http.respondLast(200,
                              bidResponse(kPage, R"(,"burl":")" + std::string(kBilling) + "\""));
    drain();
    delegate->calls.clear();
  }
  // Loads, shows, and lets the presentation finish.
  void loadAndShow() {
    load();
    ad->show(host);
    advance(fake::kTransitionDuration);
  }
  std::size_t billingHits() const {
    std::size_t hits = 0;
    for (std::size_t i = 0; i < platform.http.taskCount(); ++i) {
      hits += platform.http.request(i).url == kBilling ? 1U : 0U;
    }
    return hits;
  }
  // The ad's screen as presented from the host, with its loaded web view.
  fake::FakeScreen& adScreen() { return dynamic_cast<fake::FakeScreen&>(*host->presentedScreen()); }
  platform::View& subview(std::size_t i) {
    return *dynamic_cast<fake::FakeViewState&>(adScreen().view()).subviewList.at(i);
  }
  fake::FakeWebView& adWebView() { return dynamic_cast<fake::FakeWebView&>(subview(0)); }
  fake::FakeButton& closeButton() { return dynamic_cast<fake::FakeButton&>(subview(1)); }
  static void pageSays(fake::FakeWebView& page, std::string body) {
    dynamic_cast<fake::FakeUserContentController&>(page.userContentController())
        .post("vemba", std::move(body));
  }
  void pageSays(std::string body) { pageSays(adWebView(), std::move(body)); }
  std::vector<std::string> closeSequence() const {
    if constexpr (std::is_same_v<Ad, VembaRewardedAd>) {
      return {"adDidEarnReward(1,reward)", "adDidDismiss"};
    } else {
      return {"adDidDismiss"};
    }
  }

  std::shared_ptr<Ad> ad;
  std::shared_ptr<RecordingDelegate> delegate = std::make_shared<RecordingDelegate>();
  std::shared_ptr<platform::Screen> host;
};

using Formats = ::testing::Types<VembaInterstitialAd, VembaRewardedAd>;
TYPED_TEST_SUITE(AdShowTest, Formats);

TYPED_TEST(AdShowTest, RefusesSilentlyWhenNotReadyOrWithNothingToPresentFrom) {
  this->ad->show(this->host);  // before any load
  EXPECT_EQ(this->host->presentedScreen(), nullptr);

  this->load();
  this->ad->show(nullptr);  // no key window to find a screen in
  EXPECT_TRUE(this->ad->isReady());
  EXPECT_TRUE(this->platform.ui.webViews.empty());

  // A failed load after a success: the old page is still stored, but the ad is not ready.
  this->ad->load();
  this->platform.http.respondLast(500, std::nullopt);
  this->drain();
  this->ad->show(this->host);
  EXPECT_EQ(this->host->presentedScreen(), nullptr);
  EXPECT_EQ(this->delegate->names(), std::vector<std::string>{"adDidFailToLoad"});
}

TYPED_TEST(AdShowTest, PresentsFullScreenThenShowsThenBills) {
  this->load();
  this->ad->show(this->host);
  EXPECT_FALSE(this->ad->isReady());  // spent before the presentation
  fake::FakeWebView& webView = this->adWebView();
  ASSERT_EQ(webView.loads.size(), 1U);
  EXPECT_EQ(webView.loads[0].url.absoluteString(), kPage);
  EXPECT_TRUE(this->delegate->calls.empty());
  EXPECT_EQ(this->billingHits(), 0U);

  this->advance(fake::kTransitionDuration);
  EXPECT_EQ(this->delegate->names(), std::vector<std::string>{"adDidShow"});
  EXPECT_EQ(this->billingHits(), 1U);

  this->ad->show(this->host);  // the bid is spent
  EXPECT_EQ(this->platform.ui.webViews.size(), 1U);
  EXPECT_EQ(this->billingHits(), 1U);
}

TYPED_TEST(AdShowTest, BillsWithoutADelegateToo) {
  this->ad->setDelegate({});
  this->loadAndShow();
  EXPECT_EQ(this->billingHits(), 1U);
}

TYPED_TEST(AdShowTest, CloseButtonAndPageCloseDismissThenReport) {
  for (const bool fromPage : {false, true}) {
    SCOPED_TRACE(fromPage ? "page" : "button");
    this->loadAndShow();
    this->delegate->calls.clear();

    if (fromPage) {
      this->pageSays("close");
    } else {
      this->closeButton().tap();
    }
    // The reward (rewarded only) comes at once; the dismissal is reported once it has finished.
    std::vector<std::string> immediate = this->closeSequence();
    immediate.pop_back();
    EXPECT_EQ(this->delegate->names(), immediate);
    EXPECT_NE(this->host->presentedScreen(), nullptr);
    this->advance(fake::kTransitionDuration);
    EXPECT_EQ(this->delegate->names(), this->closeSequence());
    EXPECT_EQ(this->host->presentedScreen(), nullptr);
  }
}

TYPED_TEST(AdShowTest, OnePresentationHasOneCloseHoweverManyArrive) {
  for (const bool alsoAfterwards : {false, true}) {
    SCOPED_TRACE(alsoAfterwards ? "a new show afterwards" : "first show");
    this->loadAndShow();
    const std::weak_ptr<platform::Screen> adScreen = this->host->presentedScreen();
    const std::shared_ptr<fake::FakeWebView> page = this->adWebView().shared_from_this();
    this->delegate->calls.clear();

    // A burst from the page and the button, all before the dismissal has finished.
    for (int i = 0; i < 1000; ++i) {
      this->pageSays("close");
    }
    this->closeButton().tap();
    this->advance(fake::kTransitionDuration);
    // The page outlives the screen for a moment: its last words reach nobody.
    this->pageSays(*page, "close");
    this->advance(fake::kTransitionDuration);

    EXPECT_EQ(this->delegate->names(), this->closeSequence());
    EXPECT_TRUE(adScreen.expired());  // the screen, and the controller that owns it, are gone
  }
}

TYPED_TEST(AdShowTest, ClickIsReportedAndTheScreenStays) {
  this->loadAndShow();
  this->pageSays("click");
  EXPECT_EQ(this->delegate->names(), (std::vector<std::string>{"adDidShow", "adDidClick"}));
  EXPECT_NE(this->host->presentedScreen(), nullptr);
}

TYPED_TEST(AdShowTest, AnAdReleasedWhileShownTellsNobody) {
  this->load();
  this->ad->show(this->host);
  std::weak_ptr<TypeParam> weak = this->ad;
  this->ad.reset();
  EXPECT_TRUE(weak.expired());
  this->advance(fake::kTransitionDuration);
  this->closeButton().tap();
  this->advance(fake::kTransitionDuration);
  EXPECT_TRUE(this->delegate->calls.empty());
  EXPECT_NE(this->host->presentedScreen(), nullptr);  // nobody is left to dismiss it
}

}  // namespace
}  // namespace vemba::testing
