// The JSON shape of the bid records.
#include <gtest/gtest.h>

#include "ads/bidding/BidRecordsJson.h"
#include "ads/bidding/PrivacySignals.h"

namespace vemba::ads {
namespace {

BidRequest sampleRequest() {
  Impression impression{"1", "unit-7", Interstitial{}, std::nullopt, 0.5};
  return BidRequest{"REQ-1",
                    {"com.host", "2.3"},
                    {"IFA", "Mozilla/5.0 (iPhone)", "", "iOS", "17.4.1", "iPhone", "wifi", {}},
                    {impression},
                    {},
                    {}};
}

// The host's privacy signals at OpenRTB 2.6's places, with its types (flags as the integers 1 and
// 0, section ids as integers); what is not set stays out, and the request reads back as written.
TEST(BidRecordsTest, PrivacySignalsTakeOpenRtbsPlacesAndTypes) {
  const std::string hostile = "\"q\" \\ \u0001\n</script>" + std::string(100 * 1024, 'x');
  struct Case {
    VembaPrivacy privacy;
    std::vector<std::string> fragments;  // each in the encoded request
    std::vector<std::string> absent;     // none of these is
  };
  const Case cases[] = {
      {{}, {R"("ifa":"IFA")"}, {"regs", "user", "lmt"}},
      {{.gdprApplies = true, .tcfConsent = "CPxBidA"},
       {R"("regs":{"gdpr":1})", R"("user":{"consent":"CPxBidA"})", R"("ifa":"IFA")"},
       {"lmt"}},
      {{.gdprApplies = false}, {R"("regs":{"gdpr":0})"}, {"user"}},
      {{.gpp = "DBABMA~CPxBidA", .gppSectionIds = std::vector<std::int64_t>{2, 6}},
       {R"("regs":{"gpp":"DBABMA~CPxBidA","gpp_sid":[2,6]})"},
       {"user"}},
      {{.usPrivacy = "1YNN"}, {R"("regs":{"us_privacy":"1YNN"})"}, {}},
      {{.childDirected = true},
       {R"("regs":{"coppa":1})", R"("ifa":"00000000-0000-0000-0000-000000000000")"},
       {"lmt"}},
      {{.childDirected = false}, {R"("regs":{"coppa":0})", R"("ifa":"IFA")"}, {}},
      {{.limitAdTracking = true},
       {R"("lmt":1)", R"("ifa":"00000000-0000-0000-0000-000000000000")"},
       {"regs"}},
      {{.limitAdTracking = false}, {R"("lmt":0)", R"("ifa":"IFA")"}, {"regs"}},
      {{.tcfConsent = hostile, .usPrivacy = hostile},
       {R"("consent":"\"q\" \\ \u0001\n<\/script>)"},
       {}},
  };
  for (const Case& c : cases) {
    BidRequest request = sampleRequest();
    applyPrivacy(c.privacy, request);
    const auto text = encodeBidRequestText(request);
    ASSERT_TRUE(text);
    SCOPED_TRACE(text->substr(0, 400));
    for (const std::string& fragment : c.fragments) {
      EXPECT_NE(text->find(fragment), std::string::npos) << fragment;
    }
    for (const std::string& key : c.absent) {
      EXPECT_EQ(text->find("\"" + key + "\""), std::string::npos) << key;
    }
    const auto decoded = decodeBidRequestText(*text);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(*decoded, request);
  }
  // A flag is the integer 0 or 1 and nothing else when read back.
  for (const char* flag : {R"({"gdpr":true})", R"({"gdpr":2})", R"({"coppa":"1"})"}) {
    std::string text = *encodeBidRequestText(sampleRequest());
    text.insert(text.size() - 1, std::string(R"(,"regs":)") + flag);
    EXPECT_FALSE(decodeBidRequestText(text)) << flag;
  }
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
      {"cur as number", R"({"id":"r","cur":840})", false, "cur"},
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
