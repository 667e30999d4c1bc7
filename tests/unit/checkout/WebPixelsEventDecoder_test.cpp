#include "checkout/bridge/WebPixelsEventDecoder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "CheckoutTestSupport.h"
#include "checkout/events/FreeFormJson.h"
#include "checkout/events/PixelEventCoding.h"
#include "checkout/events/StandardEventDataCoding.h"
#include "checkout/events/WebPixelsEventCoding.h"
#include "common/JsonDecoding.h"
#include "vemba/checkout/EventJson.h"

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
  // The public reading names the path alike; a pixel event is one key naming its kind.
  const std::string oneKey = R"(Data corrupted at the top level: Expected an object with exactly )"
                             R"(one key, one of "customEvent", "standardEvent", for PixelEvent.)";
  EXPECT_EQ(fromJson<PixelEvent>(
                R"({"standardEvent":{"context":{"document":{"location":{"port":443}}}}})")
                .error()
                .description,
            R"(Type mismatch at "standardEvent.context.document.location.)"
            R"(port": Expected to decode String but found number instead.)");
  EXPECT_EQ(fromJson<PixelEvent>(R"({"customEvent":{},"standardEvent":{}})").error().description,
            oneKey);
  EXPECT_EQ(fromJson<PixelEvent>(R"({"standardevent":{}})").error().description, oneKey);
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
    const char* data;  // nullptr: no "data" key
    bool hasData;
  };
  const Case cases[] = {
      {nullptr, false},
      {R"({})", true},
      {R"({"checkout":null})", true},
      {R"({"checkout":{"lineItems":[{"quantity":2}]}})", true},
      {R"({"checkout":{"totalPrice":{"amount":"10.00","currencyCode":"CAD"}}})", false},
      {R"({"checkout":{"lineItems":[{"quantity":"2"}]}})", false},
      {R"({"checkout":[]})", false},
      {R"({"checkout":{"token":"t"},"unknown":[1,{"x":null}]})", true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.data ? c.data : "no data");
    Json standard = body("standard");
    if (c.data != nullptr) {
      standard["data"] = Json::parse(c.data);
    }
    const auto event = decodeAs<StandardEvent>(payload(standard));
    EXPECT_EQ(event.data.has_value(), c.hasData);
    EXPECT_EQ(event.id, "sh-1");
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

// The record written back, or nothing when the text does not decode.
template <typename Decode, typename Encode>
std::optional<Json> writtenBack(std::string_view text, Decode decode, Encode encode) {
  const auto decoded = json::decodeText(text, decode);
  return decoded ? std::optional(encode(*decoded)) : std::nullopt;
}

// Every key of the pixel model read from the page's message and written back (toJson): the event
// comes out as it went in, under its own name rather than the message's. (That fromJson reads it
// back, the bridge fuzzer checks on this seed.)
TEST(PixelRecordsTest, EncodingWritesBackEveryKeyRead) {
  // The bridge fuzzer's seed of the whole message (after its mode byte).
  const Json message =
      Json::parse(tests::corpusFile("checkout_bridge_fuzzer/pixel_message_every_key").substr(1));
  Json standard = Json::parse(message["body"].get<std::string>())["event"];
  const auto decoded = WebPixelsEventDecoder::decode(message);
  ASSERT_TRUE(decoded && decoded->has_value());
  const PixelEvent& event = **decoded;
  standard.erase("type");
  EXPECT_EQ(Json::parse(toJson(event)), (Json{{"standardEvent", standard}}));
  const std::string custom = R"({"customEvent":{"context":{},"customData":"{\"a\":1}","id":"1",)"
                             R"("name":"n","timestamp":"t"}})";
  EXPECT_EQ(Json::parse(toJson(fromJson<PixelEvent>(custom).value())), Json::parse(custom));
  EXPECT_EQ(toJson(fromJson<CustomData>(R"({"ignored":1})").value()), "{}");
  const std::string line =
      R"({"cost":{"totalAmount":{"amount":1.5}},"merchandise":{"id":"v"},"quantity":1})";
  EXPECT_EQ(writtenBack(line, decodeCartLine, encodeCartLine), Json::parse(line));
  EXPECT_EQ(writtenBack(R"({"percentage":12.5})", decodePricingPercentageValue,
                        encodePricingPercentageValue),
            Json::parse(R"({"percentage":12.5})"));
}

}  // namespace
}  // namespace vemba::checkout
