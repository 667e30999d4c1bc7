#include "ads/bidding/BidExchange.h"

#include <cmath>
#include <cstdint>
#include <utility>

#include "ads/bidding/BidRecordsJson.h"
#include "ads/bidding/PrivacySignals.h"
#include "ads/core/DeviceDescription.h"
#include "ads/core/UserAgentFetcher.h"
#include "ads/core/VembaLogger.h"
#include "platform/DeviceInfo.h"
#include "platform/MainQueue.h"
#include "platform/Services.h"
#include "platform/UrlErrorCode.h"
#include "vemba/ads/VembaError.h"
#include "vemba/ads/VembaSDK.h"

#ifndef VEMBA_EXCHANGE_ORIGIN
#error "VEMBA_EXCHANGE_ORIGIN must be defined by the build"
#endif

namespace vemba::ads {
namespace {

constexpr const char* kBidPath = "/bid";
constexpr const char* kBillingPath = "/v1/billing";
constexpr const char* kImpressionId = "1";
constexpr const char* kPost = "POST";
constexpr const char* kGet = "GET";
constexpr const char* kContentTypeHeader = "Content-Type";
constexpr const char* kJsonContentType = "application/json";
constexpr const char* kApiKeyHeader = "X-API-Key";
constexpr const char* kBidIdQuery = "?bidid=";
constexpr const char* kWinQuery = "&win=1";
constexpr std::chrono::seconds kBidRequestTimeout{60};
constexpr double kMicrosPerCpmUnit = 1000.0;
constexpr const char* kDefaultCurrency = "USD";
constexpr const char* kEstimatedPrecision = "estimated";
constexpr const char* kUncountablePrice =
    "no impression value: the bid's price is not a count of micros: ";

void log(std::string_view prefix, std::string_view value) {
  std::string message(prefix);
  message += value;
  VembaLogger::log(message);
}

// Any thread. The hop takes the caller's only strong reference to the ad (inside `delivery`,
// left empty), so the ad is never released on a worker thread. A moved-from std::function is in
// an unspecified state; one assigned null is empty, and a moved-from shared_ptr is null, so no
// copy of the reference stays behind on this thread whatever the library does.
void deliverOnMainQueue(BidExchange::Delivery& delivery, BidOutcome outcome) {
  auto held = std::make_shared<BidExchange::Delivery>(std::exchange(delivery, nullptr));
  platform::services().mainQueue->post(
      [held = std::move(held), outcome = std::move(outcome)] { (*held)(outcome); });
}

}  // namespace

BidEndpoints BidEndpoints::defaults() {
  return BidEndpoints{std::string(VEMBA_EXCHANGE_ORIGIN) + kBidPath,
                      std::string(VEMBA_EXCHANGE_ORIGIN) + kBillingPath};
}

BidExchange::BidExchange(AdFormat format, std::string adUnitId, BidEndpoints endpoints)
    : format_(format), adUnitId_(std::move(adUnitId)), endpoints_(std::move(endpoints)) {}

std::optional<std::string> BidExchange::bidId() const {
  const MutexLock lock(stored_->mutex);
  return stored_->bidId;
}

std::optional<Url> BidExchange::admURL() const {
  const MutexLock lock(stored_->mutex);
  return stored_->admURL;
}

std::optional<Url> BidExchange::billingURL() const {
  const MutexLock lock(stored_->mutex);
  return stored_->billingURL;
}

Expected<AdValue, std::string> BidExchange::impressionValue() const {
  double price = 0;
  std::optional<std::string> currency;
  {
    const MutexLock lock(stored_->mutex);
    price = stored_->price;
    currency = stored_->currency;
  }
  // A CPM: one impression earns a thousandth of the price, price × 1000 micros.
  const double micros = std::round(price * kMicrosPerCpmUnit);
  // 2^63 is the first double that does not fit; every smaller one does.
  constexpr double kFirstTooLarge = 9223372036854775808.0;
  if (!std::isfinite(price) || price < 0 || micros >= kFirstTooLarge) {
    return Unexpected{std::string(kUncountablePrice) + std::to_string(price)};
  }
  return AdValue{static_cast<std::int64_t>(micros), currency.value_or(kDefaultCurrency),
                 kEstimatedPrecision};
}

void BidExchange::load(double bidFloor, Recipient recipient) {
  log(format_.loadMessage, adUnitId_);
  const std::string userAgent = UserAgentFetcher::shared().userAgent();
  // An ad that no shared_ptr owns is never reached, and nothing is sent for it.
  Delivery beforeSending = recipient();
  if (!beforeSending) {
    return;
  }
  Preparation prepared = prepareBidRequest(userAgent, bidFloor);
  if (Error* failure = std::get_if<Error>(&prepared)) {
    deliverOnMainQueue(beforeSending, BidOutcome{std::move(*failure)});
    return;
  }
  platform::HttpRequest* request = std::get_if<platform::HttpRequest>(&prepared);
  if (request == nullptr) {
    return;
  }
  platform::services().http->dataTask(
      std::move(*request), [stored = stored_, billingBase = endpoints_.billingEndpointBase,
                            recipient = std::move(recipient)](platform::HttpResult result) {
        Delivery delivery = recipient();
        if (!delivery) {
          return;  // Released while in flight: nobody is told.
        }
        BidOutcome outcome = readAnswer(result, billingBase, *stored);
        deliverOnMainQueue(delivery, std::move(outcome));
      });
}

BidRequest BidExchange::createBidRequest(const std::string& ua, double bidFloor) const {
  Impression impression;
  impression.id = kImpressionId;
  impression.tagid = adUnitId_;
  // NaN compares false, so it is left out together with zero and negative floors.
  if (bidFloor > 0) {
    impression.bidfloor = bidFloor;
  }
  if (format_.kind == AdFormat::Kind::interstitial) {
    impression.interstitial = Interstitial{};
  } else {
    impression.rewarded = Rewarded{};
  }
  BidRequest request;
  request.id = platform::uuidString(platform::services().uuids->randomUuid());
  request.app = currentAppInfo();
  request.device = currentDeviceInfo(ua);
  request.imp.push_back(std::move(impression));
  applyPrivacy(VembaSDK::shared().privacy(), request);
  return request;
}

BidExchange::Preparation BidExchange::prepareBidRequest(const std::string& ua,
                                                        double bidFloor) const {
  Expected<std::string, EncodingFailure> body =
      encodeBidRequestText(createBidRequest(ua, bidFloor));
  if (!body) {
    return VembaError::encodingFailed().toError();
  }
  const std::optional<Url> endpoint = Url::parse(endpoints_.bidEndpoint);
  if (!endpoint) {
    return std::monostate{};
  }
  platform::HttpRequest request;
  request.method = kPost;
  request.url = endpoint->absoluteString();
  request.cachePolicy = platform::CachePolicy::useProtocolCachePolicy;
  request.timeout = kBidRequestTimeout;
  request.headers.emplace_back(kContentTypeHeader, kJsonContentType);
  if (std::optional<std::string> apiKey = VembaSDK::shared().apiKey()) {
    request.headers.emplace_back(kApiKeyHeader, std::move(*apiKey));
  }
  request.body = std::move(body.value());
  log(log_message::kSendingBidRequest, endpoint->absoluteString());
  return request;
}

BidOutcome BidExchange::handleBidResponse(const BidResponse& response) {
  return storeBid(response, endpoints_.billingEndpointBase, *stored_);
}

BidOutcome BidExchange::readAnswer(const platform::HttpResult& result,
                                   const std::string& billingBase, StoredBid& stored) {
  if (const auto* failure = std::get_if<platform::TransportError>(&result)) {
    // The one place a URL-loading code becomes its readable text.
    const std::string description =
        platform::describe(platform::kUrlErrorDomain, failure->code, failure->url);
    log(log_message::kBidRequestFailed, description);
    return {Error{std::string(platform::kUrlErrorDomain), failure->code, description}};
  }
  const auto& response = std::get<platform::HttpResponse>(result);
  // The status code is not looked at: any body that decodes is handled alike.
  if (!response.body) {
    return {VembaError::noData().toError()};
  }
  Expected<BidResponse, json::DecodingError> decoded = decodeBidResponseText(*response.body);
  if (!decoded) {
    log(log_message::kDecodingError, decoded.error().description());
    return {decoded.error().toError()};
  }
  return storeBid(decoded.value(), billingBase, stored);
}

BidOutcome BidExchange::storeBid(const BidResponse& response, const std::string& billingBase,
                                 StoredBid& stored) {
  // Only the first bid of the first seat is ever looked at.
  const Bid* bid = nullptr;
  if (response.seatbid && !response.seatbid->empty() && !response.seatbid->front().bid.empty()) {
    bid = &response.seatbid->front().bid.front();
  }
  std::optional<Url> adm = bid != nullptr && bid->adm ? Url::parse(*bid->adm) : std::nullopt;
  if (!adm) {
    return {VembaError::noBid().toError()};
  }
  // A failure leaves the stored bid as it is; only a usable bid replaces it.
  const MutexLock lock(stored.mutex);
  stored.bidId = response.bidid;
  stored.admURL = std::move(adm);
  stored.price = bid->price;
  stored.currency = response.cur;
  std::optional<Url> burl = bid->burl ? Url::parse(*bid->burl) : std::nullopt;
  if (burl) {
    stored.billingURL = std::move(burl);
  } else if (stored.bidId) {
    // The bid id goes in as it stands, without percent-encoding.
    stored.billingURL = Url::parse(billingBase + kBidIdQuery + *stored.bidId + kWinQuery);
  }
  // Otherwise a billing URL from an earlier load of this ad stays in place.
  return {};
}

void BidExchange::fireBillingPixel() const {
  const std::optional<Url> url = billingURL();
  if (!url) {
    return;
  }
  log(log_message::kFiringBillingPixel, url->absoluteString());
  platform::HttpRequest request;
  request.method = kGet;
  request.url = url->absoluteString();
  platform::services().http->dataTask(std::move(request), nullptr);
}

}  // namespace vemba::ads
