// When the ad path asks the platform to ready a web view for the next ad screen, and to release
// it: readied once an ad is ready and before its host hears of it, never for a failed load, once
// for any number of ready ads, again after an ad screen's web view consumed it while another ad
// is still ready; released once no ad has been ready for the grace period after the last stopped
// being ready without a show; forgotten when its process dies.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "AdTestSupport.h"
#include "FakeWebView.h"
#include "RecordingDelegate.h"
#include "ads/core/VembaSDKForTesting.h"

namespace vemba::tests {
namespace {

constexpr const char* kPage = "https://127.0.0.1/creative.html";
constexpr auto kGrace = std::chrono::milliseconds(3000);

// Notes how many hints the platform had when each adDidLoad arrived.
struct HintWatchingDelegate : RecordingDelegate {
  explicit HintWatchingDelegate(const fake::FakeUi& fakeUi) : ui(&fakeUi) {}
  void adDidLoad(VembaInterstitialAd& ad) override {
    hintsAtLoad.push_back(ui->prepareWebViewCalls);
    RecordingDelegate::adDidLoad(ad);
  }
  void adDidLoad(VembaRewardedAd& ad) override {
    hintsAtLoad.push_back(ui->prepareWebViewCalls);
    RecordingDelegate::adDidLoad(ad);
  }
  const fake::FakeUi* ui;
  std::vector<int> hintsAtLoad;
};

template <typename Ad>
class AdWebViewPreparationTest : public AdTest {
 protected:
  // One exchange answered: a usable bid, or a server error.
  void answer(const std::shared_ptr<Ad>& ad, bool usable) {
    fakePlatform.respondToBid(usable ? 200 : 500, usable ? bidResponse(kPage) : "");
    ad->load();
    drain();
  }
  int hints() const { return platform.ui.prepareWebViewCalls; }
  int releases() const { return platform.ui.releasePreparedWebViewCalls; }
};

using Formats = ::testing::Types<VembaInterstitialAd, VembaRewardedAd>;
TYPED_TEST_SUITE(AdWebViewPreparationTest, Formats);

TYPED_TEST(AdWebViewPreparationTest, AskedOnceAReadyAdIsKnownAndBeforeItsHostHearsOfIt) {
  auto ad = TypeParam::create("u");
  auto delegate = std::make_shared<HintWatchingDelegate>(this->platform.ui);
  ad->setDelegate(delegate);

  this->answer(ad, /*usable=*/false);
  EXPECT_EQ(this->hints(), 0);  // a failed load readies nothing

  this->answer(ad, /*usable=*/true);
  EXPECT_EQ(this->hints(), 1);
  EXPECT_EQ(delegate->hintsAtLoad, std::vector<int>{1});

  // A second ready ad (or a reload of the same one) does not ask for a second web view.
  this->answer(ad, /*usable=*/true);
  auto other = TypeParam::create("v");  // no delegate: readiness alone counts
  this->answer(other, /*usable=*/true);
  EXPECT_EQ(this->hints(), 1);
  EXPECT_EQ(delegate->hintsAtLoad, (std::vector<int>{1, 1}));
}

TYPED_TEST(AdWebViewPreparationTest, TheAdScreensWebViewConsumesItAndAnotherReadyAdAsksAgain) {
  auto first = TypeParam::create("u"), second = TypeParam::create("v");
  this->answer(first, /*usable=*/true);
  this->answer(second, /*usable=*/true);
  ASSERT_EQ(this->hints(), 1);

  first->show(this->fakePlatform.hostScreen());
  ASSERT_EQ(this->platform.ui.webViews.size(), 1U);
  EXPECT_TRUE(this->platform.ui.webViews[0].lock()->configuration.usesPreparedWebView);
  EXPECT_EQ(this->hints(), 2);  // for `second`, asked only once the first view was made

  EXPECT_EQ(this->releases(), 0);
  second.reset();  // the host lets the other ready ad go
  this->fakePlatform.advance(kGrace);
  EXPECT_EQ(this->releases(), 1);

  // With no ad ready, a shown ad's close asks for nothing.
  auto third = TypeParam::create("w");
  this->answer(third, /*usable=*/false);
  EXPECT_EQ(this->hints(), 2);
  this->answer(third, /*usable=*/true);
  EXPECT_EQ(this->hints(), 3);

  // A readied process that dies is forgotten, not readied again: the show's view starts its own.
  ASSERT_TRUE(this->platform.ui.terminatePreparedWebViewProcess());
  platform::Screen::of(this->fakePlatform.hostScreen())->dismiss(false, {});  // the first ad
  this->drain();
  third->show(this->fakePlatform.hostScreen());
  EXPECT_FALSE(this->platform.ui.webViews.back().lock()->configuration.usesPreparedWebView);
  EXPECT_EQ(this->hints(), 3);
}

TYPED_TEST(AdWebViewPreparationTest, ReleasedOnceNoAdHasBeenReadyForTheGrace) {
  auto first = TypeParam::create("u"), second = TypeParam::create("v");
  this->answer(first, /*usable=*/true);
  this->answer(second, /*usable=*/true);

  this->answer(first, /*usable=*/false);  // a failed reload ends readiness
  second.reset();                         // a ready ad released by its host
  // Kept over the grace, which counts from the last ready ad's going: a ready ad within it takes
  // the same readied view.
  this->fakePlatform.advance(kGrace / 2);
  this->answer(first, /*usable=*/true);
  first.reset();
  this->fakePlatform.advance(kGrace - std::chrono::milliseconds(1));
  EXPECT_EQ(this->releases(), 0);
  this->fakePlatform.advance(std::chrono::milliseconds(1));
  EXPECT_EQ(this->releases(), 1);
  this->fakePlatform.advance(kGrace);
  EXPECT_EQ(this->releases(), 1);
  EXPECT_EQ(this->hints(), 1);

  // A ready ad that outlives a reset of the ad half's state has no say in the fresh one.
  this->answer(first = TypeParam::create("w"), /*usable=*/true);
  ads::resetVembaSdkForTesting();
  this->answer(second = TypeParam::create("x"), /*usable=*/true);
  first.reset();
  EXPECT_EQ(this->releases(), 1);
}

TYPED_TEST(AdWebViewPreparationTest, AProcessWhoseUserInterfaceIsNotUpGetsNothingReadied) {
  this->platform.uiStarted = false;  // platform::ui() would start it
  auto ad = TypeParam::create("u");
  this->answer(ad, /*usable=*/true);
  ad.reset();
  EXPECT_EQ(this->hints(), 0);
  EXPECT_EQ(this->releases(), 0);
}

}  // namespace
}  // namespace vemba::tests
