// The two public ad formats: what differs between them on the load path, and the user agent
// lookup that holds the ad weakly.
#include <gtest/gtest.h>

#include "AdTestSupport.h"
#include "RecordingDelegate.h"
#include "ads/bidding/BidRecordsJson.h"

namespace vemba::testing {
namespace {

template <typename Ad>
struct FormatTraits;

template <>
struct FormatTraits<VembaInterstitialAd> {
  static constexpr const char* kLoadLine = "Loading ad for Unit ID: ";
  static bool marked(const ads::Impression& imp) { return imp.interstitial && !imp.rewarded; }
};

template <>
struct FormatTraits<VembaRewardedAd> {
  static constexpr const char* kLoadLine = "Loading rewarded ad for Unit ID: ";
  static bool marked(const ads::Impression& imp) { return imp.rewarded && !imp.interstitial; }
};

template <typename Ad>
class AdLoadTest : public AdTest {};

using Formats = ::testing::Types<VembaInterstitialAd, VembaRewardedAd>;
TYPED_TEST_SUITE(AdLoadTest, Formats);

TYPED_TEST(AdLoadTest, LoadLogsItsFormatAndSendsItsMarker) {
  auto ad = TypeParam::create("");  // an empty id is accepted as it is
  auto delegate = std::make_shared<RecordingDelegate>();
  ad->setDelegate(delegate);
  EXPECT_FALSE(ad->isReady());
  EXPECT_EQ(ad->bidFloor(), 0.0);
  ad->load();
  ASSERT_EQ(this->platform.http.taskCount(), 1U);
  EXPECT_EQ(this->logs.front(), FormatTraits<TypeParam>::kLoadLine);
  const auto body = ads::decodeBidRequestText(*this->platform.http.request(0).body);
  ASSERT_TRUE(body);
  EXPECT_TRUE(FormatTraits<TypeParam>::marked(body->imp.at(0)));
  EXPECT_EQ(body->imp[0].tagid, "");

  this->platform.http.respondLast(200, bidResponse("https://127.0.0.1/ad.html"));
  this->platform.mainQueue.runUntilIdle();
  EXPECT_EQ(delegate->names(), (std::vector<std::string>{"adDidLoad"}));
  EXPECT_TRUE(ad->isReady());
}

TYPED_TEST(AdLoadTest, ReleasedDelegateIsNotCalled) {
  auto ad = TypeParam::create("u");
  auto delegate = std::make_shared<RecordingDelegate>();
  ad->setDelegate(delegate);
  ad->load();
  delegate.reset();
  this->platform.http.respondLast(200, std::nullopt);
  this->platform.mainQueue.runUntilIdle();
  EXPECT_FALSE(ad->isReady());
  EXPECT_EQ(ad->delegate(), nullptr);
}

TYPED_TEST(AdLoadTest, AdNotOwnedBySharedPtrStopsBeforeTheRequest) {
  TypeParam ad("u");
  ad.load();
  EXPECT_EQ(this->platform.http.taskCount(), 0U);
  EXPECT_EQ(this->logs.size(), 1U);  // only the load line
  // The user agent was still fetched and cached on the way.
  EXPECT_TRUE(UserAgentFetcher::shared().cachedUserAgent());
}

}  // namespace
}  // namespace vemba::testing
