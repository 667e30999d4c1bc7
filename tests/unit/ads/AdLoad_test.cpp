// The two public ad formats: what differs between them on the load path, and the loads of an ad
// that no shared_ptr owns or that is released in flight.
#include <gtest/gtest.h>

#include <iterator>
#include <memory>
#include <type_traits>
#include <utility>

#include "AdTestSupport.h"
#include "RecordingDelegate.h"
#include "ads/bidding/BidRecordsJson.h"
#include "ads/core/UserAgentFetcher.h"
#include "platform/UrlErrorCode.h"

namespace vemba::tests {
namespace {

template <typename Ad>
class AdLoadTest : public AdTest {};

using Formats = ::testing::Types<VembaInterstitialAd, VembaRewardedAd>;
TYPED_TEST_SUITE(AdLoadTest, Formats);

TYPED_TEST(AdLoadTest, LoadLogsItsFormatAndSendsItsMarker) {
  constexpr bool rewarded = std::is_same_v<TypeParam, VembaRewardedAd>;
  auto ad = TypeParam::create("");  // an empty id is accepted as it is
  auto delegate = std::make_shared<RecordingDelegate>();
  ad->setDelegate(delegate);
  EXPECT_FALSE(ad->isReady());
  EXPECT_EQ(ad->bidFloor(), 0.0);
  ad->load();
  ASSERT_EQ(this->platform.http.taskCount(), 1U);
  EXPECT_EQ(this->logs.front(),
            rewarded ? "Loading rewarded ad for Unit ID: " : "Loading ad for Unit ID: ");
  const auto body = ads::decodeBidRequestText(*this->platform.http.request(0).body);
  ASSERT_TRUE(body);
  EXPECT_EQ(body->imp.at(0).rewarded.has_value(), rewarded);
  EXPECT_EQ(body->imp[0].interstitial.has_value(), !rewarded);
  EXPECT_EQ(body->imp[0].tagid, "");

  this->platform.http.respondLast(200, bidResponse("https://127.0.0.1/ad.html"));
  this->platform.mainQueue.runUntilIdle();
  EXPECT_EQ(delegate->names(), (std::vector<std::string>{"adDidLoad"}));
  EXPECT_TRUE(ad->isReady());
}

// The ad holds its delegate weakly: one the host lets go of while a request is in flight is gone
// at once, and the outcome finds nobody to tell.
TYPED_TEST(AdLoadTest, ADelegateReleasedInFlightIsNotKeptAlive) {
  auto ad = TypeParam::create("u");
  auto delegate = std::make_shared<RecordingDelegate>();
  ad->setDelegate(delegate);
  ad->load();
  const std::weak_ptr<RecordingDelegate> released = delegate;
  delegate.reset();
  EXPECT_TRUE(released.expired());
  this->platform.http.respondLast(200, std::nullopt);
  EXPECT_EQ(this->platform.mainQueue.runUntilIdle(), 1U);  // the outcome still ran
  EXPECT_FALSE(ad->isReady());
}

// A host subclass that answers delegate() itself, ignoring what setDelegate() stored.
template <typename Ad>
struct RoutedAd : Ad {
  explicit RoutedAd(std::string unit) : Ad(std::move(unit)) {}
  decltype(std::declval<const Ad&>().delegate()) delegate() const override { return routed; }
  std::shared_ptr<RecordingDelegate> routed = std::make_shared<RecordingDelegate>();
};

TYPED_TEST(AdLoadTest, OutcomesGoToTheDelegateTheHostsOverrideNames) {
  auto ad = std::make_shared<RoutedAd<TypeParam>>("u");
  auto stored = std::make_shared<RecordingDelegate>();
  ad->setDelegate(stored);
  ad->load();
  this->platform.http.respondLast(200, bidResponse("https://127.0.0.1/ad.html"));
  ad->load();
  this->platform.http.respondLast(200, std::nullopt);
  this->platform.mainQueue.runUntilIdle();
  EXPECT_EQ(ad->routed->names(), (std::vector<std::string>{"adDidLoad", "adDidFailToLoad"}));
  EXPECT_TRUE(stored->calls.empty());
}

// Makes the delegate load the ad again from inside its load callbacks, `reloads` times in all.
template <typename Ad>
void reloadFromCallbacks(RecordingDelegate& delegate, const std::shared_ptr<Ad>& ad, int reloads) {
  delegate.afterLoadOutcome = [weak = std::weak_ptr<Ad>(ad), reloads]() mutable {
    if (reloads-- > 0) {
      weak.lock()->load();
    }
  };
}

TYPED_TEST(AdLoadTest, LoadAgainFromInsideEachCallback) {
  // Answers in turn; each reload is made from inside the callback of the answer before it.
  const std::optional<std::string> answers[] = {bidResponse("https://127.0.0.1/1.html"),
                                                std::nullopt, std::nullopt,
                                                bidResponse("https://127.0.0.1/2.html")};
  auto ad = TypeParam::create("u");
  auto delegate = std::make_shared<RecordingDelegate>();
  reloadFromCallbacks(*delegate, ad, 3);
  ad->setDelegate(delegate);
  ad->load();
  for (std::size_t i = 0; i < std::size(answers); ++i) {
    ASSERT_EQ(this->platform.http.taskCount(), i + 1);
    this->platform.http.respondLast(200, answers[i]);
    EXPECT_EQ(this->platform.mainQueue.dispatchOnce(), 1U) << i;
    ASSERT_EQ(delegate->calls.size(), i + 1);
    EXPECT_EQ(delegate->calls[i].isReady, answers[i].has_value()) << i;
    // The readiness the outcome set is not undone by the reload made inside its callback.
    EXPECT_EQ(ad->isReady(), answers[i].has_value()) << i;
  }
  EXPECT_EQ(delegate->names(), (std::vector<std::string>{"adDidLoad", "adDidFailToLoad",
                                                         "adDidFailToLoad", "adDidLoad"}));
  EXPECT_EQ(this->platform.mainQueue.dispatchOnce(), 0U);  // nothing more is due
}

TYPED_TEST(AdLoadTest, AFailureReloadedFromItsCallbackWaitsForTheNextDispatch) {
  // An unencodable ad unit fails before any request, so each reload queues its failure at once:
  // from inside a dispatch, that failure must wait for the next one, as on the real main loop.
  auto ad = TypeParam::create("unit\xff");
  auto delegate = std::make_shared<RecordingDelegate>();
  reloadFromCallbacks(*delegate, ad, 2);
  ad->setDelegate(delegate);
  ad->load();
  for (std::size_t dispatch = 1; dispatch <= 3; ++dispatch) {
    EXPECT_EQ(this->platform.mainQueue.dispatchOnce(), 1U);
    EXPECT_EQ(delegate->calls.size(), dispatch);
  }
  EXPECT_EQ(this->platform.mainQueue.dispatchOnce(), 0U);
  EXPECT_EQ(this->platform.http.taskCount(), 0U);
  EXPECT_EQ(delegate->calls[0].error.code, 4);  // encodingFailed
}

TYPED_TEST(AdLoadTest, AnAdNobodyOwnsSendsNothingAndOneReleasedInFlightHearsNothing) {
  TypeParam("u").load();
  EXPECT_EQ(this->platform.http.taskCount(), 0U);
  EXPECT_EQ(this->logs.size(), 1U);  // only the load line
  // The user agent was still fetched and cached on the way.
  EXPECT_TRUE(UserAgentFetcher::shared().cachedUserAgent());

  TypeParam::create("u")->load();  // released as soon as it has asked
  this->platform.http.fail(0, platform::UrlErrorCode::timedOut);
  EXPECT_EQ(this->platform.mainQueue.runUntilIdle(), 0U);
  EXPECT_EQ(this->logs.size(), 3U);  // its load and send lines: the answer is not even read
}

}  // namespace
}  // namespace vemba::tests
