// The shared surface of the two ad formats, instantiated for each of them.
#include "vemba/ads/FullScreenAd.h"

#include <type_traits>

#include "ads/bidding/BidExchange.h"
#include "ads/core/VembaLogger.h"
#include "ads/formats/AdScreenListener.h"
#include "ads/formats/AdWebViewPreparation.h"
#include "ads/formats/UIUtils.h"
#include "ads/formats/VembaWebViewController.h"
#include "common/HostCall.h"
#include "common/MainThread.h"
#include "platform/LogSink.h"
#include "platform/MainQueue.h"
#include "platform/Screen.h"
#include "platform/Services.h"
#include "vemba/ads/VembaInterstitialAd.h"
#include "vemba/ads/VembaReward.h"
#include "vemba/ads/VembaRewardedAd.h"
#include "vemba/ads/VembaSDK.h"

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

constexpr std::string_view kLogCategory = "ads";
constexpr std::string_view kAlreadyPresentingLine =
    "the screen to show the ad from already presents another screen; the ad is not shown and "
    "stays ready (show it from the top screen)";

void logError(const std::string& line) {
  if (platform::LogSink* sink = platform::services().log) {
    sink->write(platform::LogSeverity::error, platform::kLibraryLogSubsystem, kLogCategory, line);
  }
}

// Calls the host's delegate; what it throws is stopped here (see common/HostCall.h) and logged,
// and the ad carries on as if the call had returned.
template <typename Call>
void tellHost(std::string_view callback, Call&& call) {
  if (const std::optional<std::string> thrown = callHost(std::forward<Call>(call))) {
    logError(std::string(callback) + " threw " + *thrown + "; the ad carries on");
  }
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
  VEMBA_ASSERT_MAIN_THREAD();
  exchange_->setBidFloor(bidFloor);
}

template <typename Self, typename Delegate>
bool FullScreenAd<Self, Delegate>::isReady() const {
  VEMBA_ASSERT_MAIN_THREAD();
  return exchange_->isReady();
}

template <typename Self, typename Delegate>
void FullScreenAd<Self, Delegate>::load() {
  VEMBA_ASSERT_MAIN_THREAD();
  // The ad's one closure on the load path: it holds the ad weakly, its delivery strongly.
  exchange_->load(bidFloor(), [weakAd = this->weak_from_this()]() -> ads::BidExchange::Delivery {
    if (std::shared_ptr<Self> ad = weakAd.lock()) {
      return
          [ad = std::move(ad)](const ads::BidOutcome& outcome) { ad->deliverBidOutcome(outcome); };
    }
    return nullptr;
  });
}

template <typename Self, typename Delegate>
void FullScreenAd<Self, Delegate>::deliverBidOutcome(const ads::BidOutcome& outcome) {
  VEMBA_ASSERT_MAIN_THREAD();
  exchange_->settle(outcome);
  // Claimed before the host hears of the ad, so a show from inside adDidLoad finds it readied.
  if (outcome.loaded()) {
    preparedWebView_ = std::make_unique<ads::PreparedWebViewClaim>();
  } else {
    preparedWebView_.reset();
  }
  expired_ = false;
  const std::uint64_t generation = ++loadGeneration_;
  const double lifetime = VembaSDK::shared().adLifetimeSeconds();
  if (outcome.loaded() && lifetime > 0) {
    platform::services().mainQueue->postAfter(
        std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::duration<double>(lifetime)),
        [weakAd = this->weak_from_this(), generation] {
          if (const std::shared_ptr<Self> ad = weakAd.lock()) {
            ad->expire(generation);
          }
        });
  }
  // Asked at delivery time: the delegate may have changed while the request was in flight.
  const std::shared_ptr<Delegate> listener = delegate();
  if (!listener) {
    return;
  }
  Self& self = static_cast<Self&>(*this);
  if (outcome.loaded()) {
    tellHost("adDidLoad", [&] { listener->adDidLoad(self); });
  } else {
    tellHost("adDidFailToLoad", [&] { listener->adDidFailToLoad(self, *outcome.failure); });
  }
}

template <typename Self, typename Delegate>
void FullScreenAd<Self, Delegate>::expire(std::uint64_t generation) {
  VEMBA_ASSERT_MAIN_THREAD();
  // A later load, or a show, has taken this bid's place.
  if (generation != loadGeneration_ || !exchange_->isReady()) {
    return;
  }
  exchange_->spend();
  expired_ = true;
  preparedWebView_.reset();
  if (const std::shared_ptr<Delegate> listener = delegate()) {
    tellHost("adDidExpire", [&] { listener->adDidExpire(static_cast<Self&>(*this)); });
  }
}

template <typename Self, typename Delegate>
void FullScreenAd<Self, Delegate>::failToShow(VembaShowErrorCode code) {
  // On a later turn, so a host that shows again from its callback is not inside its own show();
  // held until then, so the call is not lost with the host's last reference.
  std::shared_ptr<Self> held = this->weak_from_this().lock();
  if (!held) {
    return;  // an ad no shared_ptr owns has nobody to tell
  }
  platform::services().mainQueue->post([ad = std::move(held), code] {
    if (const std::shared_ptr<Delegate> listener = ad->delegate()) {
      tellHost("adDidFailToShow", [&] { listener->adDidFailToShow(*ad, showError(code)); });
    }
  });
}

template <typename Self, typename Delegate>
void FullScreenAd<Self, Delegate>::show(std::shared_ptr<ScreenHandle> handle) {
  VEMBA_ASSERT_MAIN_THREAD();
  // The refusals: the ad stays as it is, and the delegate hears why.
  if (!isReady()) {
    failToShow(expired_ ? VembaShowErrorCode::expired : VembaShowErrorCode::notReady);
    return;
  }
  const std::optional<Url> page = exchange_->admURL();
  if (!page) {
    failToShow(VembaShowErrorCode::noPage);
    return;
  }
  std::shared_ptr<platform::Screen> from =
      handle ? platform::Screen::of(handle) : ads::UIUtils::getTopViewController();
  // A screen presents one screen at a time: the presentation would be refused, so the bid is
  // kept for a show from the top screen.
  if (from && from->presentedScreen()) {
    logError(std::string(kAlreadyPresentingLine));
    from.reset();
  }
  const std::shared_ptr<ads::VembaWebViewController> controller =
      from ? ads::VembaWebViewController::create() : nullptr;
  if (!controller) {
    failToShow(VembaShowErrorCode::noScreen);
    return;
  }
  // Valued now, from the bid being shown: a load during the transition replaces the exchange's.
  Expected<AdValue, std::string> value = exchange_->impressionValue();
  // Spent before presenting, so a second show cannot present the same bid twice.
  exchange_->spend();
  if (!screenListener_) {
    screenListener_ = std::make_shared<ads::AdScreenListener>(
        [weakAd = this->weak_from_this()](ads::VembaWebViewController& closing) {
          const std::shared_ptr<Self> ad = weakAd.lock();
          return ad && ad->screenDidClose(closing);
        },
        [weakAd = this->weak_from_this()] {
          if (const std::shared_ptr<Self> ad = weakAd.lock()) {
            ad->screenDidClick();
          }
        });
  }
  controller->setDelegate(screenListener_);
  controller->holdPreparedWebView(std::move(preparedWebView_));
  controller->screen()->setModalPresentationStyle(platform::ModalPresentationStyle::fullScreen);
  controller->load(*page);  // parked until the screen's view loads
  const bool presenting = from->presentScreen(
      controller->screen(), /*animated=*/true,
      [weakAd = this->weak_from_this(), value = std::move(value)] {
        const std::shared_ptr<Self> ad = weakAd.lock();
        if (!ad) {
          return;
        }
        if (const std::shared_ptr<Delegate> listener = ad->delegate()) {
          tellHost("adDidShow", [&] { listener->adDidShow(*ad); });
        }
        // Billed only once the ad is on screen, with or without a delegate; the impression is
        // recorded with the bill.
        ad->exchange_->fireBillingPixel();
        if (!value) {
          logError(value.error());
        } else if (const std::shared_ptr<Delegate> listener = ad->delegate()) {
          tellHost("adDidRecordImpression",
                   [&] { listener->adDidRecordImpression(*ad, value.value()); });
        }
      });
  if (!presenting) {
    failToShow(VembaShowErrorCode::noScreen);  // the platform refused; the bid is spent
  }
}

template <typename Self, typename Delegate>
bool FullScreenAd<Self, Delegate>::screenDidClose(ads::VembaWebViewController& controller) {
  VEMBA_ASSERT_MAIN_THREAD();
  platform::Screen& screen = *controller.screen();
  if (screen.presentedScreen()) {
    // A screen over the ad (a checkout sheet) goes, as dismissing a screen that presents another
    // does; the ad stays on screen, and closable, and has not been closed.
    screen.dismiss(/*animated=*/true, {});
    return false;
  }
  if constexpr (std::is_same_v<Self, VembaRewardedAd>) {
    // Granted on every close, before anything is dismissed.
    if (const std::shared_ptr<Delegate> listener = delegate()) {
      tellHost("adDidEarnReward", [&] {
        listener->adDidEarnReward(static_cast<Self&>(*this), VembaReward::standard());
      });
    }
  }
  screen.dismiss(/*animated=*/true, [weakAd = this->weak_from_this()] {
    const std::shared_ptr<Self> ad = weakAd.lock();
    if (!ad) {
      return;
    }
    if (const std::shared_ptr<Delegate> listener = ad->delegate()) {
      tellHost("adDidDismiss", [&] { listener->adDidDismiss(*ad); });
    }
  });
  return true;
}

template <typename Self, typename Delegate>
void FullScreenAd<Self, Delegate>::screenDidClick() {
  VEMBA_ASSERT_MAIN_THREAD();
  if (const std::shared_ptr<Delegate> listener = delegate()) {
    tellHost("adDidClick", [&] { listener->adDidClick(static_cast<Self&>(*this)); });
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
