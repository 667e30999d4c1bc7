// The door through which the load path reaches an ad's private parts: its bid exchange and the
// delivery of an outcome to its delegate. The ad classes befriend it; nothing in the public
// headers exposes either. Stateless; used on whichever thread holds a strong pointer to the ad.
#pragma once

namespace vemba::ads {

class BidExchange;
struct BidOutcome;

struct AdAccess {
  template <typename Ad>
  static BidExchange& exchange(Ad& ad) {
    return ad.bidExchange();
  }
  // Main thread, after the exchange has settled the ad's readiness.
  template <typename Ad>
  static void deliver(Ad& ad, const BidOutcome& outcome) {
    ad.deliverBidOutcome(outcome);
  }
};

}  // namespace vemba::ads
