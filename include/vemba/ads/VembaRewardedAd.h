// A full-screen rewarded ad for one ad unit. See FullScreenAd for ownership and threads.
#pragma once

#include <memory>
#include <string>

#include "vemba/Export.h"
#include "vemba/ads/FullScreenAd.h"
#include "vemba/ads/VembaAdDelegates.h"

namespace vemba {

class VEMBA_EXPORT VembaRewardedAd : public FullScreenAd<VembaRewardedAd, VembaRewardedAdDelegate> {
 public:
  explicit VembaRewardedAd(std::string adUnitId);
  static std::shared_ptr<VembaRewardedAd> create(std::string adUnitId);
};

}  // namespace vemba
