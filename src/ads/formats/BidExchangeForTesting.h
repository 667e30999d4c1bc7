// Test seam of the ad formats, kept out of the public headers: the bid exchange an ad owns, so a
// test can read the stored bid, or fire the billing pixel, without showing the ad.
#pragma once

#include "ads/bidding/BidExchange.h"
#include "vemba/ads/FullScreenAd.h"

namespace vemba::ads {

struct BidExchangeForTesting {
  template <typename Self, typename Delegate>
  static const BidExchange& of(const FullScreenAd<Self, Delegate>& ad) {
    return *ad.exchange_;
  }
};

}  // namespace vemba::ads
