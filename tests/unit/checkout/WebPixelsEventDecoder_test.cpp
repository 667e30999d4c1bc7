#include "checkout/events/WebPixelsEventDecoder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "FakePlatform.h"
#include "checkout/events/ContextCoding.h"
#include "checkout/events/FreeFormJson.h"
#include "checkout/events/PixelEventCoding.h"
#include "checkout/events/StandardEventDataCoding.h"
#include "checkout/events/WebPixelsEventCoding.h"
#include "common/JsonDecoding.h"

namespace vemba::checkout {
namespace {

using json::Json;

Json payload(Json event) {
  return Json{{"name", "page_viewed"}, {"event", std::move(event)}};
}

Json body(std::string_view type) {
  return Json{{"id", "sh-1"},
              {"name", "checkout_started"},
              {"timestamp", "2024-03-01T10:00:00.000Z"},
              {"type", type},
              {"context", Json::object()}};
}

Expected<std::optional<PixelEvent>, json::DecodingError> decodePayload(const Json& p) {
  return WebPixelsEventDecoder::decode(Json{{"name", "webPixels"}, {"body", p.dump()}});
}

// The decoded event, failing the test when there is none.
template <typename T>
T decodeAs(const Json& p) {
  auto decoded = decodePayload(p);
  EXPECT_TRUE(decoded) << (decoded ? "" : decoded.error().description());
  if (!decoded || !decoded->has_value() || !std::holds_alternative<T>(**decoded)) {
    ADD_FAILURE() << "no event of the expected kind for " << p.dump();
    return T{};
  }
  return std::get<T>(**decoded);
}

TEST(WebPixelsEventDecoderTest, StandardEventWithEmptyContextAndNoData) {
  fake::InstalledFakePlatform platform;
  const auto event = decodeAs<StandardEvent>(payload(body("standard")));
  EXPECT_EQ(event.id, "sh-1");
  EXPECT_EQ(event.name, "checkout_started");  // the inner name, not the outer one
  EXPECT_EQ(event.timestamp, "2024-03-01T10:00:00.000Z");
  EXPECT_EQ(event.context, Context{});
  EXPECT_FALSE(event.data.has_value());
  EXPECT_TRUE(platform.log.lines.empty());
}

TEST(WebPixelsEventDecoderTest, OtherTypesYieldNoEventAndNoFailure) {
  for (const char* type : {"Standard", "STANDARD", "Custom", "", "dom"}) {
    auto decoded = decodePayload(payload(body(type)));
    ASSERT_TRUE(decoded) << type;
    EXPECT_FALSE(decoded->has_value()) << type;
  }
}

TEST(WebPixelsEventDecoderTest, FailuresAreReportedNotSwallowed) {
  // A message whose event is body(type) with `key` set to `value` (removed when it is absent).
  const auto with = [](std::string_view type, const char* key, std::optional<Json> value) {
    Json event = body(type);
    value ? void(event[key] = *value) : void(event.erase(key));
    return Json{{"body", payload(event).dump()}};
  };
  // "data" is depth 1, so 512 arrays under it pass the limit; the first one in reading order
  // (members in key order) names the path.
  const Json tooDeep =
      Json::parse(std::string(kMaxFreeFormDepth, '[') + std::string(kMaxFreeFormDepth, ']'));
  Json deepData = body("standard");
  deepData["data"] = Json{{"z", tooDeep}, {"b", Json::array({1, tooDeep})}};

  struct Case {
    const char* name;
    Json message;
    const char* path;
  };
  const Case cases[] = {
      {"body missing", Json{{"name", "webPixels"}}, "body"},
      {"body not a string", Json{{"name", "webPixels"}, {"body", payload(body("standard"))}},
       "body"},
      {"body not JSON", Json{{"name", "webPixels"}, {"body", "{"}}, ""},
      {"outer name missing", Json{{"name", "webPixels"}, {"body", R"({"event":{}})"}}, "name"},
      {"null context", with("standard", "context", nullptr), "event.context"},
      {"custom without customData", with("custom", "customData", {}), "event.customData"},
      {"customData a string", with("custom", "customData", "{}"), "event.customData"},
      {"data not an object", with("standard", "data", Json::array()), "event.data"},
      {"port a number",
       with("standard", "context", Json::parse(R"({"document":{"location":{"port":443}}})")),
       "event.context.document.location.port"},
      {"id missing", with("standard", "id", {}), "event.id"},
  };
  for (const Case& c : cases) {
    auto decoded = WebPixelsEventDecoder::decode(c.message);
    ASSERT_FALSE(decoded) << c.name;
    EXPECT_EQ(decoded.error().path, c.path) << c.name << ": " << decoded.error().description();
  }
  auto deep = decodePayload(payload(deepData));
  ASSERT_FALSE(deep);
  EXPECT_EQ(deep.error().kind, json::DecodingError::Kind::dataCorrupted);
  std::string deepPath = "event.data.b[1]";
  for (std::size_t depth = 3; depth <= kMaxFreeFormDepth; ++depth) {
    deepPath += "[0]";
  }
  EXPECT_EQ(deep.error().path, deepPath);
  deepData["data"] = Json{{"b", tooDeep[0]}};
  EXPECT_TRUE(decodePayload(payload(deepData)));
}

TEST(WebPixelsEventDecoderTest, CustomDataIsReserialisedWithFreeFormKinds) {
  Json custom = body("custom");
  custom["customData"] = Json::parse(R"({"b":[1,"x",null],"a":1,"c":null,"d":{"e":0.5}})");
  custom["data"] = "ignored for custom events";
  const auto event = decodeAs<CustomEvent>(payload(custom));
  ASSERT_TRUE(event.customData.has_value());
  EXPECT_EQ(*event.customData, R"({"a":1,"b":[1.0,"x"],"d":{"e":0.5}})");
  EXPECT_EQ(event.id, "sh-1");
  EXPECT_EQ(event.context, Context{});
  // Slashes are escaped as the encoder does everywhere; the text stays valid JSON.
  custom["customData"] = Json{{"url", "https://a/b"}};
  EXPECT_EQ(decodeAs<CustomEvent>(payload(custom)).customData, R"({"url":"https:\/\/a\/b"})");
}

TEST(WebPixelsEventDecoderTest, StandardDataIsTypedOrLeftOut) {
  struct Case {
    const char* data;
    bool hasData;
  };
  const Case cases[] = {
      {R"({})", true},
      {R"({"checkout":null})", true},
      {R"({"checkout":{"lineItems":[{"quantity":2}]}})", true},
      {R"({"checkout":{"totalPrice":{"amount":"10.00","currencyCode":"CAD"}}})", false},
      {R"({"checkout":{"lineItems":[{"quantity":"2"}]}})", false},
      {R"({"checkout":[]})", false},
      {R"({"checkout":{"token":"t"},"unknown":[1,{"x":null}]})", true},
  };
  for (const Case& c : cases) {
    Json standard = body("standard");
    standard["data"] = Json::parse(c.data);
    const auto event = decodeAs<StandardEvent>(payload(standard));
    EXPECT_EQ(event.data.has_value(), c.hasData) << c.data;
    EXPECT_EQ(event.id, "sh-1") << c.data;
  }
}

// The data is read free-form before it is typed: nulls inside arrays are dropped instead of
// failing, and a member number that reads as an integer comes back from it (-0.0 as 0.0).
TEST(WebPixelsEventDecoderTest, StandardDataIsTypedFromItsFreeFormReading) {
  Json standard = body("standard");
  standard["data"] = Json::parse(R"({"checkout":{"lineItems":[null,{"quantity":2,
      "properties":[null]}],"totalPrice":{"amount":-0.0}}})");
  const auto data = decodeAs<StandardEvent>(payload(standard)).data;
  ASSERT_TRUE(data && data->checkout && data->checkout->lineItems);
  ASSERT_EQ(data->checkout->lineItems->size(), 1U);
  EXPECT_EQ(data->checkout->lineItems->at(0).quantity, 2.0);
  EXPECT_EQ(data->checkout->lineItems->at(0).properties, std::vector<Property>{});
  EXPECT_FALSE(std::signbit(*data->checkout->totalPrice->amount));
  // Typed as sent, the same object fails on the first null.
  EXPECT_FALSE(json::decodeText(standard["data"].dump(), decodeStandardEventData));
}

// A payload using every record of the pixel model once.
constexpr std::string_view kFullStandardData = R"({"checkout":{
  "attributes":[{"key":"gift","value":"yes"}],
  "billingAddress":{"address1":"7 Quillon Lane","address2":"","city":"Ottawa","country":"Canada",
    "countryCode":"CA","firstName":"Tova","lastName":"Brennick","phone":"+15550100",
    "province":"Ontario","provinceCode":"ON","zip":"K0X 9Z9"},
  "buyerAcceptsEmailMarketing":false,"buyerAcceptsSmsMarketing":true,"currencyCode":"CAD",
  "delivery":{"selectedDeliveryOptions":[{"cost":{"amount":5,"currencyCode":"CAD"},
    "costAfterDiscounts":{"amount":0,"currencyCode":"CAD"},"description":"3-5 days",
    "handle":"std","title":"Standard","type":"shipping"}]},
  "discountApplications":[{"allocationMethod":"ACROSS","targetSelection":"ALL",
    "targetType":"LINE_ITEM","title":"WINTER","type":"DISCOUNT_CODE",
    "value":{"amount":2.5,"currencyCode":"CAD"}}],
  "discountsAmount":{"amount":2.5,"currencyCode":"CAD"},"email":"tova@example.com",
  "lineItems":[{"discountAllocations":[{"amount":{"amount":2.5,"currencyCode":"CAD"},
      "discountApplication":{"title":"WINTER","value":{"percentage":10}}}],
    "finalLinePrice":{"amount":22,"currencyCode":"CAD"},"id":"li-1",
    "properties":[{"key":"engraving","value":"AL"}],"quantity":2,
    "sellingPlanAllocation":{"sellingPlan":{"id":"sp-1","name":"Monthly"}},"title":"Socks",
    "variant":{"id":"v-1","image":{"src":"https://cdn.example/s.jpg"},
      "price":{"amount":12.25,"currencyCode":"CAD"},"product":{"id":"p-1","title":"Socks",
      "type":"Apparel","untranslatedTitle":"Socks","url":"/products/socks","vendor":"Knits"},
      "sku":"SK-1","title":"Grey","untranslatedTitle":"Grey"}}],
  "localization":{"country":{"isoCode":"CA"},"language":{"isoCode":"EN"},
    "market":{"handle":"ca","id":"m-1"}},
  "order":{"customer":{"id":"c-1","isFirstOrder":true},"id":"o-1"},"phone":"+15550100",
  "shippingAddress":{"city":"Ottawa"},"shippingLine":{"price":{"amount":0,"currencyCode":"CAD"}},
  "smsMarketingPhone":"+15550100","subtotalPrice":{"amount":24.5,"currencyCode":"CAD"},
  "token":"tok","totalPrice":{"amount":27.37,"currencyCode":"CAD"},
  "totalTax":{"amount":2.87,"currencyCode":"CAD"},
  "transactions":[{"amount":{"amount":27.37,"currencyCode":"CAD"},"gateway":"fernpay_gateway",
    "paymentMethod":{"name":"NORTHCARD","type":"creditCard"}}]}})";

// The record written back, or nothing when the text does not decode.
template <typename Decode>
std::optional<Json> writtenBack(std::string_view text, Decode decode) {
  const auto decoded = json::decodeText(text, decode);
  return decoded ? std::optional(toJson(*decoded)) : std::nullopt;
}

// Every key of the pixel model read and written back: the JSON comes out as it went in.
TEST(PixelRecordsTest, EncodingWritesBackEveryKeyRead) {
  const std::string context =
      R"({"document":{"characterSet":"UTF-8","location":{"hash":"","host":"shop.example:8443",)"
      R"("hostname":"shop.example","href":"https://shop.example:8443/c?x=1","origin":"https://)"
      R"(shop.example:8443","pathname":"/c","port":"8443","protocol":"https:","search":"?x=1"},)"
      R"("referrer":"","title":"Checkout"},"navigator":{"cookieEnabled":true,"language":"en",)"
      R"("languages":["en"],"userAgent":"UA"},"window":{"innerHeight":844,"innerWidth":390,)"
      R"("location":{"href":"https://shop.example/c"},"origin":"https://shop.example",)"
      R"("outerHeight":844,"outerWidth":390,"pageXOffset":0,"pageYOffset":12.5,)"
      R"("screen":{"height":844,"width":390},"screenX":0,"screenY":0,"scrollX":0,"scrollY":12.5}})";
  const std::string standard = R"({"context":)" + context + R"(,"data":)" +
                               std::string(kFullStandardData) +
                               R"(,"id":"1","name":"n","timestamp":"t"})";
  EXPECT_EQ(writtenBack(standard, decodeStandardEvent), Json::parse(standard));
  const std::string custom = R"({"context":{},"customData":"{\"a\":1}","id":"1","name":"n",)"
                             R"("timestamp":"t"})";
  EXPECT_EQ(writtenBack(custom, decodeCustomEvent), Json::parse(custom));
  const std::string line =
      R"({"cost":{"totalAmount":{"amount":1.5}},"merchandise":{"id":"v"},"quantity":1})";
  EXPECT_EQ(writtenBack(line, decodeCartLine), Json::parse(line));
  EXPECT_EQ(writtenBack(R"({"percentage":12.5})", decodePricingPercentageValue),
            Json::parse(R"({"percentage":12.5})"));
  EXPECT_EQ(writtenBack(R"({"ignored":1})", decodeCustomData), Json::object());
}

TEST(PixelRecordsTest, AbsentFieldsAreLeftOutWhenEncoding) {
  EXPECT_EQ(toJson(Context{}).dump(), "{}");
  EXPECT_EQ(toJson(CustomEvent{}).dump(), "{}");
  StandardEvent event;
  event.data = StandardEventData{};
  event.name = "page_viewed";
  EXPECT_EQ(toJson(event).dump(), R"({"data":{},"name":"page_viewed"})");
}

}  // namespace
}  // namespace vemba::checkout
