// Standard-event data is sent as a free-form object and typed from the document directly. These
// tests hold that typing to the definition it replaces: read free-form, write back, decode.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "checkout/events/FreeFormJson.h"
#include "checkout/events/StandardEventDataCoding.h"
#include "checkout/events/WebPixelsEventDecoder.h"
#include "common/JsonDecoding.h"

namespace vemba::checkout {
namespace {

using json::Json;
using json::JsonPath;

std::optional<StandardEventData> typedDirectly(const Json& data) {
  try {
    return decodeFreeFormStandardEventData(data, JsonPath());
  } catch (const json::DecodingFailure&) {
    return std::nullopt;
  }
}

std::optional<StandardEventData> typedThroughFreeForm(const Json& data) {
  try {
    return decodeStandardEventData(toJson(readJsonObject(data, JsonPath())), JsonPath());
  } catch (const json::DecodingFailure&) {
    return std::nullopt;
  }
}

// Both ways agree on success and on the result, down to the sign of zeros (seen in the text).
void expectSameTyping(const std::string& text) {
  const Json data = Json::parse(text);
  const std::optional<StandardEventData> direct = typedDirectly(data);
  const std::optional<StandardEventData> reference = typedThroughFreeForm(data);
  ASSERT_EQ(direct.has_value(), reference.has_value()) << text;
  if (direct) {
    EXPECT_EQ(*direct, *reference) << text;
    EXPECT_EQ(toJson(*direct).dump(), toJson(*reference).dump()) << text;
  }
}

std::string withAmount(const std::string& amount) {
  return R"({"checkout":{"totalPrice":{"amount":)" + amount + R"(,"currencyCode":"CAD"}}})";
}

TEST(FreeFormStandardDataTest, NumbersReadAsTheFreeFormReaderLeavesThem) {
  for (const char* amount :
       {"-0.0", "-0", "0.0", "0", "2", "2.0", "-2.0", "2.5", "1e2", "1.5e300", "-1e-300",
        "9223372036854775807", "-9223372036854775808", "9223372036854775808",
        "18446744073709551615", "9.3e18", "-9.3e18", "123456789012345678901234567890"}) {
    expectSameTyping(withAmount(amount));
  }
  // -0.0 has no fraction, so the free-form reader keeps it as the integer 0.
  const auto typed = typedDirectly(Json::parse(withAmount("-0.0")));
  ASSERT_TRUE(typed && typed->checkout && typed->checkout->totalPrice);
  EXPECT_FALSE(std::signbit(*typed->checkout->totalPrice->amount));
}

TEST(FreeFormStandardDataTest, NullsInArraysAreDroppedNotFailed) {
  const std::vector<std::string> texts = {
      R"({"checkout":{"lineItems":[null,{"quantity":2},null]}})",
      R"({"checkout":{"lineItems":[{"discountAllocations":[null],"properties":[null,{"key":"k"}]}]}})",
      R"({"checkout":{"attributes":[null],"transactions":[null,null],"discountApplications":[null]}})",
      R"({"checkout":{"delivery":{"selectedDeliveryOptions":[null,{"title":"Standard"}]}}})",
  };
  for (const std::string& text : texts) {
    expectSameTyping(text);
  }
  const auto typed = typedDirectly(Json::parse(texts[0]));
  ASSERT_TRUE(typed && typed->checkout && typed->checkout->lineItems);
  ASSERT_EQ(typed->checkout->lineItems->size(), 1U);
  EXPECT_EQ(typed->checkout->lineItems->at(0).quantity, 2.0);
  // The same arrays decoded as sent fail on the null.
  EXPECT_THROW((void)decodeStandardEventData(Json::parse(texts[0]), JsonPath()),
               json::DecodingFailure);
}

TEST(FreeFormStandardDataTest, WhatFailsOneWayFailsTheOther) {
  const std::vector<std::string> texts = {
      R"({"checkout":{"lineItems":[1]}})",
      R"({"checkout":{"lineItems":[true]}})",
      R"({"checkout":{"lineItems":["x"]}})",
      R"({"checkout":{"lineItems":[[{"quantity":1}]]}})",
      R"({"checkout":{"lineItems":{"quantity":1}}})",
      R"({"checkout":{"lineItems":[{"quantity":"2"}]}})",
      R"({"checkout":{"lineItems":[{"quantity":true}]}})",
      R"({"checkout":{"lineItems":[{"quantity":[2]}]}})",
      R"({"checkout":{"email":1}})",
      R"({"checkout":{"email":["a"]}})",
      R"({"checkout":{"order":{"customer":{"isFirstOrder":0}}}})",
      R"({"checkout":"x"})",
      R"({"checkout":[]})",
  };
  for (const std::string& text : texts) {
    EXPECT_FALSE(typedDirectly(Json::parse(text))) << text;
    expectSameTyping(text);
  }
}

TEST(FreeFormStandardDataTest, NullMembersUnknownKeysAndTheFullRecordAgree) {
  const std::vector<std::string> texts = {
      R"({})",
      R"({"checkout":null})",
      R"({"checkout":{"email":null,"totalPrice":null,"lineItems":null}})",
      R"({"checkout":{"token":"t","extra":[1,[null,{"x":null}],2.5]},"unknown":{"a":[]}})",
      R"({"checkout":{"discountApplications":[{"value":{"percentage":10,"amount":-0.0}}]}})",
      R"({"checkout":{"lineItems":[{"variant":{"price":{"amount":12.25},"product":{"id":"p"}},
          "sellingPlanAllocation":{"sellingPlan":{"id":"s","name":null}},"quantity":3.0}],
          "localization":{"country":{"isoCode":"CA"},"market":{"handle":"ca","id":null}},
          "buyerAcceptsEmailMarketing":false,"shippingLine":{"price":{"amount":0}}}})",
  };
  for (const std::string& text : texts) {
    expectSameTyping(text);
  }
}

// The free-form read's own failures still fail the pixel event, with the path of the first
// container nested too deeply in reading order (members in key order).
TEST(FreeFormStandardDataTest, NestingBeyondTheLimitFailsTheEventAtTheFirstDeepContainer) {
  const auto nested = [](std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
  };
  const auto decodeData = [](const std::string& data) {
    const std::string body = R"({"name":"n","event":{"id":"i","name":"n","timestamp":"t",)"
                             R"("type":"standard","context":{},"data":)" +
                             data + "}}";
    return WebPixelsEventDecoder::decode(Json{{"name", "webPixels"}, {"body", body}});
  };
  // "data" is depth 1; the array under "b" is depth 2, so 511 arrays reach the limit exactly.
  EXPECT_TRUE(decodeData(R"({"b":)" + nested(kMaxFreeFormDepth - 1) + "}"));

  const std::string tooDeep = nested(kMaxFreeFormDepth);
  const auto failed = decodeData(R"({"z":)" + tooDeep + R"(,"b":[1,)" + tooDeep + "]}");
  ASSERT_FALSE(failed);
  EXPECT_EQ(failed.error().kind, json::DecodingError::Kind::dataCorrupted);
  std::string path = "event.data.b[1]";
  for (std::size_t depth = 3; depth <= kMaxFreeFormDepth; ++depth) {
    path += "[0]";
  }
  EXPECT_EQ(failed.error().path, path);

  // The same error readJsonObject reports, and it fails before any typing.
  const Json data = Json::parse(R"({"z":)" + tooDeep + R"(,"b":[1,)" + tooDeep + "]}");
  const auto viaReader = json::decodeText(data.dump(), readJsonObject);
  ASSERT_FALSE(viaReader);
  EXPECT_EQ("event.data." + viaReader.error().path, failed.error().path);
  EXPECT_EQ(viaReader.error().detail, failed.error().detail);
}

}  // namespace
}  // namespace vemba::checkout
