// The JSON shape of the bid records.
#include <gtest/gtest.h>

#include "ads/bidding/BidRecordsJson.h"

namespace vemba::ads {
namespace {

BidRequest sampleRequest() {
  Impression impression{"1", "unit-7", Interstitial{}, std::nullopt, 0.5};
  return BidRequest{"REQ-1",
                    {"com.host", "2.3"},
                    {"IFA", "Mozilla/5.0 (iPhone)", "", "iOS", "17.4.1", "iPhone", "wifi"},
                    {impression}};
}

TEST(BidRecordsTest, RequestEncodesExactlyWithSlashesEscaped) {
  const auto text = encodeBidRequestText(sampleRequest());
  ASSERT_TRUE(text);
  EXPECT_EQ(
      *text,
      R"({"app":{"bundle":"com.host","ver":"2.3"},"device":{"connection":"wifi","ifa":"IFA",)"
      R"x("ip":"","model":"iPhone","os":"iOS","osv":"17.4.1","ua":"Mozilla\/5.0 (iPhone)"},)x"
      R"("id":"REQ-1","imp":[{"bidfloor":0.5,"id":"1","interstitial":{},"tagid":"unit-7"}]})");
}

// Every key of the response is written back under the name it is read from.
TEST(BidRecordsTest, ResponseRoundTrips) {
  const BidResponse response{
      "r", "bid-9",
      std::vector<SeatBid>{
          SeatBid{{Bid{"b", "1", 2.25, "https://a/p", "https://a/i", "https://a/b"},
                   Bid{std::nullopt, "2", 0, std::nullopt, std::nullopt, std::nullopt}}}}};
  const auto decodedResponse = decodeBidResponseText(json::dumpCompact(encode(response)));
  ASSERT_TRUE(decodedResponse);
  EXPECT_EQ(*decodedResponse, response);
}

TEST(BidRecordsTest, ResponseDecoding) {
  struct Case {
    const char* name;
    const char* text;
    bool decodes;
    const char* failingPath;
  };
  const Case cases[] = {
      {"only an id", R"({"id":"r"})", true, ""},
      {"null bidid", R"({"id":"r","bidid":null,"seatbid":null})", true, ""},
      {"unknown keys", R"({"id":"r","x":{"y":[1]},"seatbid":[{"seat":"s","bid":[]}]})", true, ""},
      {"missing id", R"({"seatbid":[]})", false, "id"},
      {"id null", R"({"id":null})", false, "id"},
      {"bidid number", R"({"id":"r","bidid":5})", false, "bidid"},
      {"seatbid object", R"({"id":"r","seatbid":{}})", false, "seatbid"},
      {"seat without bid", R"({"id":"r","seatbid":[{}]})", false, "seatbid[0].bid"},
      {"bid without price", R"({"id":"r","seatbid":[{"bid":[{"impid":"1"}]}]})", false,
       "seatbid[0].bid[0].price"},
      {"adm as number", R"({"id":"r","seatbid":[{"bid":[{"impid":"1","price":1,"adm":3}]}]})",
       false, "seatbid[0].bid[0].adm"},
      {"top-level array", R"([])", false, ""},
      {"empty body", "", false, ""},
  };
  for (const Case& c : cases) {
    const auto result = decodeBidResponseText(c.text);
    EXPECT_EQ(result.hasValue(), c.decodes) << c.name;
    if (!result) {
      EXPECT_EQ(result.error().path, c.failingPath) << c.name;
    }
  }
}

}  // namespace
}  // namespace vemba::ads
