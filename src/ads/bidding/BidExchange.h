// The bid exchange shared by both ad formats: builds and posts the bid request, reads the
// winning bid, keeps the page and billing URLs, hands the outcome to the main queue, and fires
// the billing pixel.
//
// Owned by its ad (one exchange per ad object, destroyed with it); used on the main thread. The
// exchange knows nothing of the ad: a load is given a Recipient, the ad's own closure holding the
// ad weakly, and asks it for a Delivery wherever the ad could be gone (before sending, and when
// the answer is in). The closures a load leaves behind hold only that Recipient and the stored
// bid, never the exchange itself, so an answer arriving after the ad (and with it the exchange)
// is gone finds what it needs, and then stops.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "ads/bidding/BidRecords.h"
#include "common/ThreadSafety.h"
#include "platform/HttpClient.h"
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
  // Runs on the main queue with one load's outcome: the ad settles its readiness (settle()) and
  // tells its delegate. It holds the ad strongly until it has run.
  using Delivery = std::function<void(const BidOutcome&)>;
  // The ad's way back, asked on the thread where the load stands (the caller's before sending,
  // the worker's once the answer is in): a Delivery while the ad exists, an empty one once it is
  // gone. It holds the ad only weakly, so it may be dropped on any thread.
  using Recipient = std::function<Delivery()>;

  explicit BidExchange(AdFormat format, std::string adUnitId,
                       BidEndpoints endpoints = BidEndpoints::defaults());
  BidExchange(const BidExchange&) = delete;
  BidExchange& operator=(const BidExchange&) = delete;

  const std::string& adUnitId() const { return adUnitId_; }
  double bidFloor() const { return bidFloor_; }
  void setBidFloor(double bidFloor) { bidFloor_ = bidFloor; }
  bool isReady() const { return isReady_; }

  // The stored bid, as the last usable answer left it. Any thread.
  std::optional<std::string> bidId() const;
  std::optional<Url> admURL() const;
  std::optional<Url> billingURL() const;
  // What one impression of the stored bid earns; absent, with the reason, when its price cannot
  // be counted in micros (negative, not finite, or too large).
  Expected<AdValue, std::string> impressionValue() const;

  // Main thread. Logs the load line, takes the user agent and, while `recipient` reaches the
  // ad, performs the bid request with `bidFloor` (the ad's bidFloor() as the ad reads it). An
  // answer that finds the ad gone is dropped unread: no log line, no stored bid, no delivery.
  // Outcomes are queued in the order the answers arrive.
  void load(double bidFloor, Recipient recipient);

  BidRequest createBidRequest(const std::string& ua, double bidFloor) const;

  // What the request step decided before anything was sent: a request to send, a failure to
  // report (the request could not be encoded), or nothing at all (an unusable endpoint is
  // silent by design: no callback, no log).
  using Preparation = std::variant<std::monostate, platform::HttpRequest, Error>;
  Preparation prepareBidRequest(const std::string& ua, double bidFloor) const;

  // Any thread: stores the bid of a usable response (a failure leaves the stored bid as it is).
  BidOutcome handleBidResponse(const BidResponse& response);

  // Main thread: the readiness an outcome leaves (set before the delegate hears of it).
  void settle(const BidOutcome& outcome) { isReady_ = outcome.loaded(); }
  // Main thread: the loaded bid is being shown, so it cannot be shown again.
  void spend() { isReady_ = false; }

  // Main thread, after the ad has been presented. Does nothing without a billing URL.
  void fireBillingPixel() const;

 private:
  // The bid the last usable answer left, written on the worker thread and read on the main one:
  // shared with each request in flight, every field guarded by `mutex`.
  struct StoredBid {
    Mutex mutex;
    std::optional<std::string> bidId VEMBA_GUARDED_BY(mutex);
    std::optional<Url> admURL VEMBA_GUARDED_BY(mutex);
    std::optional<Url> billingURL VEMBA_GUARDED_BY(mutex);
    double price VEMBA_GUARDED_BY(mutex) = 0;
    std::optional<std::string> currency VEMBA_GUARDED_BY(mutex);
  };
  // Any thread: the steps of reading an answer (logging where the outcome calls for it); they
  // write nothing but `stored`.
  static BidOutcome readAnswer(const platform::HttpResult& result, const std::string& billingBase,
                               StoredBid& stored);
  static BidOutcome storeBid(const BidResponse& response, const std::string& billingBase,
                             StoredBid& stored);

  const AdFormat format_;
  const std::string adUnitId_;
  const BidEndpoints endpoints_;
  // Main-thread state: no closure of the load path touches it.
  double bidFloor_ = 0.0;
  bool isReady_ = false;
  const std::shared_ptr<StoredBid> stored_ = std::make_shared<StoredBid>();
};

}  // namespace vemba::ads
