// The host-facing delegate interfaces of the two ad formats. Ads hold their delegate weakly;
// every call arrives on the main thread. The operations with a default body are optional: a host
// that overrides none of them sees the ad behave as it always did.
#pragma once

#include "vemba/Error.h"
#include "vemba/Export.h"
#include "vemba/ads/AdValue.h"
#include "vemba/ads/VembaReward.h"
#include "vemba/ads/VembaShowError.h"

namespace vemba {

class VembaInterstitialAd;
class VembaRewardedAd;

class VEMBA_EXPORT VembaInterstitialAdDelegate {
 public:
  virtual ~VembaInterstitialAdDelegate() = default;
  // A usable bid was received; isReady() has just become true.
  virtual void adDidLoad(VembaInterstitialAd& ad) = 0;
  // The bid exchange failed; isReady() has just become false. `error` is any error: a
  // VembaError, a transport error ("URLError") or a decoding error ("DecodingError").
  virtual void adDidFailToLoad(VembaInterstitialAd& ad, const Error& error) = 0;
  virtual void adDidShow(VembaInterstitialAd& ad) = 0;
  virtual void adDidDismiss(VembaInterstitialAd& ad) = 0;
  virtual void adDidClick(VembaInterstitialAd& ad) = 0;

  // show() returned without presenting; once per such call, on a later turn of the main loop.
  // `error` is of the domain "VembaShowError" (VembaShowError.h).
  virtual void adDidFailToShow(VembaInterstitialAd& /*ad*/, const Error& /*error*/) {}
  // One impression was recorded: once per show, right after the billing pixel is fired (or would
  // be). None when the bid's price is negative, not finite or too large to count in micros.
  virtual void adDidRecordImpression(VembaInterstitialAd& /*ad*/, const AdValue& /*value*/) {}
  // The loaded ad was not shown within the configuration's adLifetimeSeconds and is no longer
  // ready; once per load.
  virtual void adDidExpire(VembaInterstitialAd& /*ad*/) {}
};

class VEMBA_EXPORT VembaRewardedAdDelegate {
 public:
  virtual ~VembaRewardedAdDelegate() = default;
  virtual void adDidLoad(VembaRewardedAd& ad) = 0;
  virtual void adDidFailToLoad(VembaRewardedAd& ad, const Error& error) = 0;
  virtual void adDidShow(VembaRewardedAd& ad) = 0;
  virtual void adDidDismiss(VembaRewardedAd& ad) = 0;
  virtual void adDidClick(VembaRewardedAd& ad) = 0;
  virtual void adDidEarnReward(VembaRewardedAd& ad, const VembaReward& reward) = 0;

  // As VembaInterstitialAdDelegate's.
  virtual void adDidFailToShow(VembaRewardedAd& /*ad*/, const Error& /*error*/) {}
  virtual void adDidRecordImpression(VembaRewardedAd& /*ad*/, const AdValue& /*value*/) {}
  virtual void adDidExpire(VembaRewardedAd& /*ad*/) {}
};

}  // namespace vemba
