// The shared surface of the two ad formats, instantiated for each of them.
#include "vemba/ads/FullScreenAd.h"

#include "ads/bidding/BidExchange.h"
#include "ads/core/VembaLogger.h"
#include "vemba/ads/VembaInterstitialAd.h"
#include "vemba/ads/VembaRewardedAd.h"

namespace vemba {
namespace {

template <typename Self>
ads::AdFormat formatOf();

template <>
ads::AdFormat formatOf<VembaInterstitialAd>() {
  return {ads::AdFormat::Kind::interstitial, log_message::kLoadingInterstitial};
}

template <>
ads::AdFormat formatOf<VembaRewardedAd>() {
  return {ads::AdFormat::Kind::rewarded, log_message::kLoadingRewarded};
}

}  // namespace

template <typename Self, typename Delegate>
FullScreenAd<Self, Delegate>::FullScreenAd(std::string adUnitId)
    : exchange_(std::make_unique<ads::BidExchange>(formatOf<Self>(), std::move(adUnitId))) {}

template <typename Self, typename Delegate>
FullScreenAd<Self, Delegate>::~FullScreenAd() = default;

template <typename Self, typename Delegate>
const std::string& FullScreenAd<Self, Delegate>::adUnitId() const {
  return exchange_->adUnitId();
}

template <typename Self, typename Delegate>
double FullScreenAd<Self, Delegate>::bidFloor() const {
  return exchange_->bidFloor();
}

template <typename Self, typename Delegate>
void FullScreenAd<Self, Delegate>::setBidFloor(double bidFloor) {
  exchange_->setBidFloor(bidFloor);
}

template <typename Self, typename Delegate>
bool FullScreenAd<Self, Delegate>::isReady() const {
  return exchange_->isReady();
}

template <typename Self, typename Delegate>
void FullScreenAd<Self, Delegate>::load() {
  ads::BidExchange::load(static_cast<Self&>(*this));
}

template <typename Self, typename Delegate>
void FullScreenAd<Self, Delegate>::deliverBidOutcome(const ads::BidOutcome& outcome) {
  // Asked at delivery time: the delegate may have changed while the request was in flight.
  const std::shared_ptr<Delegate> listener = delegate();
  if (!listener) {
    return;
  }
  Self& self = static_cast<Self&>(*this);
  if (outcome.loaded()) {
    listener->adDidLoad(self);
  } else {
    listener->adDidFailToLoad(self, *outcome.failure);
  }
}

template class FullScreenAd<VembaInterstitialAd, VembaInterstitialAdDelegate>;
template class FullScreenAd<VembaRewardedAd, VembaRewardedAdDelegate>;

VembaInterstitialAd::VembaInterstitialAd(std::string adUnitId)
    : FullScreenAd(std::move(adUnitId)) {}

std::shared_ptr<VembaInterstitialAd> VembaInterstitialAd::create(std::string adUnitId) {
  return std::make_shared<VembaInterstitialAd>(std::move(adUnitId));
}

VembaRewardedAd::VembaRewardedAd(std::string adUnitId) : FullScreenAd(std::move(adUnitId)) {}

std::shared_ptr<VembaRewardedAd> VembaRewardedAd::create(std::string adUnitId) {
  return std::make_shared<VembaRewardedAd>(std::move(adUnitId));
}

}  // namespace vemba
