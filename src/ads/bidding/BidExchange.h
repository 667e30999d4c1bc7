// The bid exchange shared by both ad formats: builds and posts the bid request, reads the
// winning bid, keeps the page and billing URLs, reports the outcome on the main queue, and fires
// the billing pixel.
//
// Owned by its ad (one exchange per ad object, destroyed with it). load() and
// performBidRequest() run on the calling (main) thread; the HTTP completion and
// handleBidResponse() run on the HTTP client's worker thread and hold the ad only weakly, so an
// ad released while its request is in flight gets no callback. Outcomes are delivered on the
// main queue, holding the ad strongly until they have run. The bid state written on the worker
// thread is guarded by a mutex; isReady and bidFloor belong to the main thread.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "ads/bidding/BidRecords.h"
#include "platform/HttpClient.h"
#include "vemba/Error.h"
#include "vemba/Url.h"

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

// What the ad does when an outcome reaches the main thread (after isReady has been set).
struct BidOutcomeHandlers {
  std::function<void()> didLoad;
  std::function<void(const Error&)> didFail;
};

class BidExchange {
 public:
  BidExchange(AdFormat format, std::string adUnitId, BidOutcomeHandlers handlers,
              BidEndpoints endpoints = BidEndpoints::defaults());

  const std::string& adUnitId() const { return adUnitId_; }
  double bidFloor() const { return bidFloor_; }
  void setBidFloor(double bidFloor) { bidFloor_ = bidFloor; }
  bool isReady() const { return isReady_; }
  void setIsReady(bool ready) { isReady_ = ready; }

  std::optional<std::string> bidId() const;
  std::optional<Url> admURL() const;
  std::optional<Url> billingURL() const;

  // Logs the load line, takes the user agent from the cache and performs the bid request,
  // unless `owner` (the ad) is gone by then.
  void load(const std::weak_ptr<void>& owner);

  BidRequest createBidRequest(const std::string& ua) const;
  void performBidRequest(const std::string& ua, const std::weak_ptr<void>& owner);
  // Worker thread. Picks the first bid of the first seat and stores the bid state.
  void handleBidResponse(const BidResponse& response, std::shared_ptr<void> owner);
  // Any thread. Queues the failure for the main thread.
  void notifyDelegateDidFail(Error error, std::shared_ptr<void> owner);
  // Main thread, after the ad has been presented. Does nothing without a billing URL.
  void fireBillingPixel() const;

 private:
  // Worker thread: the data task's completion once the ad is known to be alive.
  void handleHttpResult(platform::HttpResult result, std::shared_ptr<void> owner);

  const AdFormat format_;
  const std::string adUnitId_;
  const BidOutcomeHandlers handlers_;
  const BidEndpoints endpoints_;
  double bidFloor_ = 0.0;
  bool isReady_ = false;

  mutable std::mutex mutex_;  // guards the bid state below
  std::optional<std::string> bidId_;
  std::optional<Url> admURL_;
  std::optional<Url> billingURL_;
};

}  // namespace vemba::ads
