// What the interstitial and the rewarded ad share: ad unit, bid floor, readiness, delegate, the
// load path and showing the ad full-screen. Instantiated only for the two ad classes (in the
// library).
//
// Owned by the host through std::shared_ptr (use create() or std::make_shared): the load path
// holds the ad through a std::weak_ptr, and an ad that is not owned by a shared_ptr does not load
// at all. Used on the main thread; all delegate calls arrive there. Hosts may subclass and
// override.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "vemba/Error.h"
#include "vemba/Export.h"
#include "vemba/ScreenHandle.h"
#include "vemba/ads/VembaShowError.h"

namespace vemba {

namespace ads {
class BidExchange;
struct BidOutcome;
struct BidExchangeForTesting;
class PreparedWebViewClaim;
class VembaWebViewController;
class VembaWebViewControllerDelegate;
}  // namespace ads
template <typename Self, typename Delegate>
class VEMBA_EXPORT FullScreenAd : public std::enable_shared_from_this<Self> {
 public:
  virtual ~FullScreenAd();

  // Every delegate call goes through delegate(), so an override decides who is told.
  virtual std::shared_ptr<Delegate> delegate() const { return delegate_.lock(); }
  virtual void setDelegate(std::weak_ptr<Delegate> delegate) { delegate_ = std::move(delegate); }
  const std::string& adUnitId() const;
  // Sent as the bid floor when strictly greater than zero.
  virtual double bidFloor() const;
  virtual void setBidFloor(double bidFloor);
  // True after a successful load, false after a failed one.
  virtual bool isReady() const;

  // Requests a bid; the outcome arrives as adDidLoad or adDidFailToLoad on the main thread,
  // except when the ad is released before the answer arrives (then nothing is called).
  virtual void load();

  // Shows the loaded ad full-screen, presented (animated) from `from`, or, when it is null, from
  // the top screen of the host's key window. Presents nothing when the ad is not ready (or has
  // expired), has no page, or there is no screen to present from (then it stays ready); when
  // `from` already presents another screen it logs an error line and stays ready too. Each of
  // these tells the delegate adDidFailToShow, with its VembaShowErrorCode, on a later turn.
  // Otherwise the ad stops being ready at once; adDidShow follows when the presentation has
  // finished, then the billing pixel is fired and adDidRecordImpression follows. Closing the ad's
  // screen dismisses it and then calls adDidDismiss; a close while a screen the ad opened (a
  // checkout sheet) is over it dismisses only that screen.
  //
  // Whatever a delegate call throws is stopped inside the library and logged at error level:
  // nothing unwinds into the platform's callbacks.
  virtual void show(std::shared_ptr<ScreenHandle> from = nullptr);

  FullScreenAd(const FullScreenAd&) = delete;
  FullScreenAd& operator=(const FullScreenAd&) = delete;

 protected:
  explicit FullScreenAd(std::string adUnitId);

 private:
  friend struct ads::BidExchangeForTesting;
  // Main thread: settles the readiness an outcome leaves, then tells the delegate.
  void deliverBidOutcome(const ads::BidOutcome& outcome);
  // Tells the delegate, on a later turn, that a show presented nothing, and why.
  void failToShow(VembaShowErrorCode code);
  // The loaded bid of `generation` was not shown within the configured lifetime.
  void expire(std::uint64_t generation);
  // What the ad's screen reports: its close button or the page's "close", and the page's "click".
  // True when the close began the dismissal of the ad's own screen (false when it dismissed a
  // screen presented over the ad instead).
  bool screenDidClose(ads::VembaWebViewController& controller);
  void screenDidClick();

  std::weak_ptr<Delegate> delegate_;
  std::unique_ptr<ads::BidExchange> exchange_;
  // Receives the screen's reports for this ad; made on the first show.
  std::shared_ptr<ads::VembaWebViewControllerDelegate> screenListener_;
  // Held while the ad is ready, so a web view is readied for its screen (see AdWebViewPreparation).
  std::unique_ptr<ads::PreparedWebViewClaim> preparedWebView_;
  // Counts the successful loads, so that a lifetime timer of an earlier one does nothing.
  std::uint64_t loadGeneration_ = 0;
  bool expired_ = false;  // the last loaded bid expired unshown
};

}  // namespace vemba
