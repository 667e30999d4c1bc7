// The bid exchange shared by both ad formats: builds and posts the bid request, reads the
// winning bid, keeps the page and billing URLs, reports the outcome on the main queue, and fires
// the billing pixel.
//
// Owned by its ad (one exchange per ad object, destroyed with it). load() runs on the calling
// (main) thread. Every closure that outlives a call is bound to a typed pointer of the ad: the
// user-agent callback and the HTTP completion hold a std::weak_ptr<Ad> and do nothing once it has
// expired (an ad released in flight gets no callback); once the outcome is known, the main-queue
// hop holds a std::shared_ptr<Ad> until it has run, and the worker keeps no reference after
// posting, so the ad is never destroyed on the worker thread. The exchange reaches itself again
// through the ad (AdAccess), never through a captured `this`. The bid state written on the worker
// thread is guarded by a mutex; isReady and bidFloor belong to the main thread.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "ads/bidding/AdAccess.h"
#include "ads/bidding/BidRecords.h"
#include "platform/HttpClient.h"
#include "platform/MainQueue.h"
#include "platform/Services.h"
#include "vemba/Error.h"
#include "vemba/Expected.h"
#include "vemba/Url.h"
#include "vemba/ads/AdValue.h"

namespace vemba::ads {

struct AdFormat {
  enum class Kind { interstitial, rewarded };
  Kind kind;
  std::string_view loadMessage;  // the prefix of the log line written by load()
};

struct BidEndpoints {
  std::string bidEndpoint;          // an https URL whose path is "/bid"
  std::string billingEndpointBase;  // the same origin, path "/v1/billing"
  // The endpoints of this build (its configured exchange origin); hosts cannot change them.
  static BidEndpoints defaults();
};

// How one bid exchange ended: loaded (no error) or failed with the error the delegate receives.
struct BidOutcome {
  std::optional<Error> failure;
  bool loaded() const { return !failure; }
};

class BidExchange {
 public:
  explicit BidExchange(AdFormat format, std::string adUnitId,
                       BidEndpoints endpoints = BidEndpoints::defaults());

  const std::string& adUnitId() const { return adUnitId_; }
  double bidFloor() const { return bidFloor_; }
  void setBidFloor(double bidFloor) { bidFloor_ = bidFloor; }
  bool isReady() const { return isReady_; }

  std::optional<std::string> bidId() const;
  std::optional<Url> admURL() const;
  std::optional<Url> billingURL() const;
  // What one impression of the stored bid earns; absent, with the reason, when its price cannot
  // be counted in micros (negative, not finite, or too large).
  Expected<AdValue, std::string> impressionValue() const;

  // Main thread. Logs the load line, takes the user agent from the cache and, unless the ad is
  // gone by then, performs the bid request. `Ad` is the ad class that owns this exchange, and is
  // held from here on only through std::weak_ptr<Ad> / std::shared_ptr<Ad>.
  template <typename Ad>
  static void load(Ad& ad);

  // `bidFloor` is the ad's bidFloor() as the ad reads it (a subclass may override the reader).
  BidRequest createBidRequest(const std::string& ua, double bidFloor) const;

  // What the request step decided before anything was sent: a request to send, a failure to
  // report (the request could not be encoded), or nothing at all (an unusable endpoint is
  // silent by design: no callback, no log).
  using Preparation = std::variant<std::monostate, platform::HttpRequest, Error>;
  Preparation prepareBidRequest(const std::string& ua, double bidFloor) const;

  // Worker thread: classifies the data task's result (logging where the outcome calls for it)
  // and stores the bid state of a usable bid.
  BidOutcome handleHttpResult(const platform::HttpResult& result);
  BidOutcome handleBidResponse(const BidResponse& response);

  // Main thread: the readiness an outcome leaves (set before the delegate hears of it).
  void settle(const BidOutcome& outcome) { isReady_ = outcome.loaded(); }
  // Main thread: the loaded bid is being shown, so it cannot be shown again.
  void spend() { isReady_ = false; }

  // Main thread, after the ad has been presented. Does nothing without a billing URL.
  void fireBillingPixel() const;

 private:
  void logLoad() const;

  template <typename Ad>
  static void performBidRequest(const std::string& ua, const std::shared_ptr<Ad>& ad);
  // Any thread. Queues the outcome for the main thread, holding the ad until it has run.
  template <typename Ad>
  static void deliverOnMainQueue(std::shared_ptr<Ad> ad, BidOutcome outcome);

  const AdFormat format_;
  const std::string adUnitId_;
  const BidEndpoints endpoints_;
  double bidFloor_ = 0.0;
  bool isReady_ = false;

  mutable std::mutex mutex_;  // guards the bid state below
  std::optional<std::string> bidId_;
  std::optional<Url> admURL_;
  std::optional<Url> billingURL_;
  double price_ = 0;
  std::optional<std::string> currency_;
};

// The user agent comes from the process-wide cache; declared here so the template below does not
// pull the cache's header into every includer.
void fetchUserAgent(const std::function<void(const std::string&)>& completion);

template <typename Ad>
void BidExchange::load(Ad& ad) {
  AdAccess::exchange(ad).logLoad();
  // An ad that no shared_ptr owns has an empty weak pointer and stops here.
  fetchUserAgent([weakAd = ad.weak_from_this()](const std::string& userAgent) {
    if (const std::shared_ptr<Ad> alive = weakAd.lock()) {
      performBidRequest(userAgent, alive);
    }
  });
}

template <typename Ad>
void BidExchange::performBidRequest(const std::string& ua, const std::shared_ptr<Ad>& ad) {
  Preparation prepared = AdAccess::exchange(*ad).prepareBidRequest(ua, ad->bidFloor());
  if (Error* failure = std::get_if<Error>(&prepared)) {
    deliverOnMainQueue(ad, BidOutcome{std::move(*failure)});
    return;
  }
  platform::HttpRequest* request = std::get_if<platform::HttpRequest>(&prepared);
  if (request == nullptr) {
    return;
  }
  platform::services().http->dataTask(
      std::move(*request), [weakAd = std::weak_ptr<Ad>(ad)](platform::HttpResult result) {
        std::shared_ptr<Ad> alive = weakAd.lock();
        if (!alive) {
          return;  // Released while in flight: nobody is told.
        }
        BidOutcome outcome = AdAccess::exchange(*alive).handleHttpResult(result);
        // The hop takes the worker's only reference, so the ad cannot die on this thread.
        deliverOnMainQueue(std::move(alive), std::move(outcome));
      });
}

template <typename Ad>
void BidExchange::deliverOnMainQueue(std::shared_ptr<Ad> ad, BidOutcome outcome) {
  platform::services().mainQueue->post([ad = std::move(ad), outcome = std::move(outcome)] {
    AdAccess::exchange(*ad).settle(outcome);
    AdAccess::deliver(*ad, outcome);
  });
}

}  // namespace vemba::ads
