// Feeds arbitrary bytes to the bid response decoder and, when they decode, through the winning
// bid selection. Nothing may crash, hang or leak.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ads/bidding/BidRecordsJson.h"
#include "vemba/Url.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto response = vemba::ads::decodeBidResponseText(text);
  if (!response) {
    (void)response.error().description();
    return 0;
  }
  // Re-encoding what was decoded must succeed and decode to the same record.
  const std::string again = vemba::json::dumpCompact(vemba::ads::encode(*response));
  const auto roundTrip = vemba::ads::decodeBidResponseText(again);
  if (!roundTrip || !(*roundTrip == *response)) {
    __builtin_trap();
  }
  if (response->seatbid && !response->seatbid->empty() && !response->seatbid->front().bid.empty()) {
    const auto& bid = response->seatbid->front().bid.front();
    if (bid.adm) {
      (void)vemba::Url::parse(*bid.adm);
    }
    if (bid.burl) {
      (void)vemba::Url::parse(*bid.burl);
    }
  }
  return 0;
}
