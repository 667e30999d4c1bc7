// A full-screen interstitial ad for one ad unit. See FullScreenAd for ownership and threads.
#pragma once

#include <memory>
#include <string>

#include "vemba/Export.h"
#include "vemba/ads/FullScreenAd.h"
#include "vemba/ads/VembaAdDelegates.h"

namespace vemba {

class VEMBA_EXPORT VembaInterstitialAd
    : public FullScreenAd<VembaInterstitialAd, VembaInterstitialAdDelegate> {
 public:
  explicit VembaInterstitialAd(std::string adUnitId);
  static std::shared_ptr<VembaInterstitialAd> create(std::string adUnitId);
};

}  // namespace vemba
