// The door through which the load path and the ad's screen reach an ad's private parts: its bid
// exchange, the delivery of an outcome to its delegate, and the screen's close and click. The ad
// classes befriend it; nothing in the public headers exposes either. Stateless; used on whichever
// thread holds a strong pointer to the ad.
#pragma once

namespace vemba::ads {

class BidExchange;
struct BidOutcome;
class VembaWebViewController;

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
  // Main thread: the ad's screen reported a close or a click.
  template <typename Ad>
  static bool screenDidClose(Ad& ad, VembaWebViewController& controller) {
    return ad.screenDidClose(controller);
  }
  template <typename Ad>
  static void screenDidClick(Ad& ad) {
    ad.screenDidClick();
  }
};

}  // namespace vemba::ads
