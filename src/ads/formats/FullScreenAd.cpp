// The shared surface of the two ad formats, instantiated for each of them.
#include "vemba/ads/FullScreenAd.h"

#include <type_traits>

#include "ads/bidding/BidExchange.h"
#include "ads/core/VembaLogger.h"
#include "ads/formats/AdScreenListener.h"
#include "ads/formats/AdWebViewPreparation.h"
#include "ads/formats/UIUtils.h"
#include "ads/formats/VembaWebViewController.h"
#include "platform/Screen.h"
#include "vemba/ads/VembaInterstitialAd.h"
#include "vemba/ads/VembaReward.h"
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
  // Claimed before the host hears of the ad, so a show from inside adDidLoad finds it readied.
  if (outcome.loaded()) {
    preparedWebView_ = std::make_unique<ads::PreparedWebViewClaim>();
  } else {
    preparedWebView_.reset();
  }
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

template <typename Self, typename Delegate>
void FullScreenAd<Self, Delegate>::show(std::shared_ptr<platform::Screen> from) {
  // The three silent refusals: no callback, and the ad stays as it is.
  if (!exchange_->isReady()) {
    return;
  }
  const std::optional<Url> page = exchange_->admURL();
  if (!page) {
    return;
  }
  if (!from) {
    from = ads::UIUtils::getTopViewController();
  }
  if (!from) {
    return;
  }
  const std::shared_ptr<ads::VembaWebViewController> controller =
      ads::VembaWebViewController::create();
  if (!controller) {
    return;  // a screen to present from but no user interface to draw with: not reachable
  }
  // Spent before presenting, so a second show cannot present the same bid twice.
  exchange_->spend();
  if (!screenListener_) {
    screenListener_ = std::make_shared<ads::AdScreenListener<Self>>(this->weak_from_this());
  }
  controller->setDelegate(screenListener_);
  controller->holdPreparedWebView(std::move(preparedWebView_));
  controller->screen()->setModalPresentationStyle(platform::ModalPresentationStyle::fullScreen);
  controller->load(*page);  // parked until the screen's view loads
  from->presentScreen(controller->screen(), /*animated=*/true, [weakAd = this->weak_from_this()] {
    const std::shared_ptr<Self> ad = weakAd.lock();
    if (!ad) {
      return;
    }
    if (const std::shared_ptr<Delegate> listener = ad->delegate()) {
      listener->adDidShow(*ad);
    }
    // Billed only once the ad is on screen, with or without a delegate.
    ads::AdAccess::exchange(*ad).fireBillingPixel();
  });
}

template <typename Self, typename Delegate>
void FullScreenAd<Self, Delegate>::screenDidClose(ads::VembaWebViewController& controller) {
  if constexpr (std::is_same_v<Self, VembaRewardedAd>) {
    // Granted on every close, before anything is dismissed.
    if (const std::shared_ptr<Delegate> listener = delegate()) {
      listener->adDidEarnReward(static_cast<Self&>(*this), VembaReward::standard());
    }
  }
  controller.screen()->dismiss(/*animated=*/true, [weakAd = this->weak_from_this()] {
    const std::shared_ptr<Self> ad = weakAd.lock();
    if (!ad) {
      return;
    }
    if (const std::shared_ptr<Delegate> listener = ad->delegate()) {
      listener->adDidDismiss(*ad);
    }
  });
}

template <typename Self, typename Delegate>
void FullScreenAd<Self, Delegate>::screenDidClick() {
  if (const std::shared_ptr<Delegate> listener = delegate()) {
    listener->adDidClick(static_cast<Self&>(*this));
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
