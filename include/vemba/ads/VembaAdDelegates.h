// The host-facing delegate interfaces of the two ad formats. Ads hold their delegate weakly;
// every call arrives on the main thread.
#pragma once

#include "vemba/Error.h"
#include "vemba/ads/VembaReward.h"

namespace vemba {

class VembaInterstitialAd;
class VembaRewardedAd;

class VembaInterstitialAdDelegate {
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
};

class VembaRewardedAdDelegate {
 public:
  virtual ~VembaRewardedAdDelegate() = default;
  virtual void adDidLoad(VembaRewardedAd& ad) = 0;
  virtual void adDidFailToLoad(VembaRewardedAd& ad, const Error& error) = 0;
  virtual void adDidShow(VembaRewardedAd& ad) = 0;
  virtual void adDidDismiss(VembaRewardedAd& ad) = 0;
  virtual void adDidClick(VembaRewardedAd& ad) = 0;
  virtual void adDidEarnReward(VembaRewardedAd& ad, const VembaReward& reward) = 0;
};

}  // namespace vemba
