// The ad half's request, user agent and log lines, as the inspection header gives them.
#include "Inspection.h"
#include "ads/bidding/BidExchange.h"
#include "ads/bidding/BidRecordsJson.h"
#include "ads/core/UserAgentFetcher.h"
#include "ads/core/VembaLogger.h"

namespace vemba::inspection {

void setAdLogSink(std::function<void(std::string_view line)> sink) {
  VembaLogger::setDevelopmentSink(std::move(sink));
}

std::string adUserAgent() {
  return UserAgentFetcher::shared().userAgent();
}

Expected<std::string, std::string> bidRequestBody(bool rewarded, const std::string& adUnitId,
                                                  double bidFloor) {
  const ads::AdFormat format{
      rewarded ? ads::AdFormat::Kind::rewarded : ads::AdFormat::Kind::interstitial, ""};
  ads::BidExchange exchange(format, adUnitId);
  exchange.setBidFloor(bidFloor);
  auto body =
      ads::encodeBidRequestText(exchange.createBidRequest(adUserAgent(), exchange.bidFloor()));
  if (!body) {
    return Unexpected(body.error().reason);
  }
  return std::move(*body);
}

}  // namespace vemba::inspection
