#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "CheckoutTestSupport.h"
#include "checkout/events/CheckoutCompletedEventCoding.h"
#include "checkout/events/CheckoutCompletedEventDecoder.h"

namespace vemba::checkout {
namespace {

using json::Json;
using ::testing::HasSubstr;
using ::testing::StartsWith;

// A complete summary using every field once.
constexpr std::string_view kFullSummary = R"({
  "orderDetails": {
    "id": "urn:ekn:OrderIdentity/9912",
    "email": "tova@example.com",
    "phone": "+15550100",
    "billingAddress": {"address1": "7 Quillon Lane", "address2": "Apt 4", "city": "Ottawa",
      "countryCode": "CA", "firstName": "Tova", "lastName": "Brennick", "name": "Tova Brennick",
      "phone": "+15550100", "postalCode": "K0X 9Z9", "referenceId": "ref-1", "zoneCode": "ON"},
    "cart": {
      "token": "c1-abc",
      "lines": [{
        "title": "Wool socks", "quantity": 2, "merchandiseId": "urn:ekn:ProductVariant/1",
        "productId": "urn:ekn:Product/7",
        "price": {"amount": 24.5, "currencyCode": "CAD"},
        "image": {"sm": "https://cdn.example/s.jpg", "md": "https://cdn.example/m.jpg",
                  "lg": "https://cdn.example/l.jpg", "altText": "Grey socks"},
        "discounts": [{"title": "WINTER", "amount": {"amount": 2, "currencyCode": "CAD"},
                       "applicationType": "DISCOUNT_CODE", "value": 10, "valueType": "PERCENTAGE"}]
      }],
      "price": {"subtotal": {"amount": 49, "currencyCode": "CAD"},
                "total": {"amount": 52.37, "currencyCode": "CAD"},
                "taxes": {"amount": 3.37, "currencyCode": "CAD"},
                "shipping": {"amount": 0, "currencyCode": "CAD"},
                "discounts": [{"title": "WINTER"}]}
    },
    "deliveries": [{"method": "SHIPPING", "details": {"name": "Standard",
      "additionalInfo": "3-5 days", "location": {"city": "Ottawa"}}}],
    "paymentMethods": [{"type": "creditCard", "details": {"brand": "NORTHCARD", "last4": null}}]
  },
  "unknownTopLevel": {"ignored": [1, 2, 3]}
})";

Json envelope(std::string_view body) {
  return Json{{"name", "completed"}, {"body", body}};
}

class CompletedEventDecoderTest : public testing::CheckoutTest {
 protected:
  static CheckoutCompletedEvent decode(const Json& message) {
    return CheckoutCompletedEventDecoder::decode(message);
  }
};

// The values themselves are checked by writing the summary back (below).
TEST_F(CompletedEventDecoderTest, DecodesAFullSummaryWithoutLogging) {
  const CheckoutCompletedEvent event = decode(envelope(kFullSummary));
  EXPECT_EQ(event.orderDetails.id, "urn:ekn:OrderIdentity/9912");
  EXPECT_EQ(event, json::decodeText(kFullSummary, decodeCheckoutCompletedEvent).value());
  EXPECT_TRUE(logLines().empty());
}

TEST_F(CompletedEventDecoderTest, FailureLogsOnceAndYieldsTheEmptyEvent) {
  struct Case {
    const char* name;
    Json message;
    const char* descriptionPart;  // expected inside the logged line
  };
  const Case cases[] = {
      {"no orderDetails", envelope("{}"),
       "event - Key not found at \"orderDetails\": No value associated with key "
       "\"orderDetails\"."},
      {"not JSON", envelope("{\"orderDetails\":"), "not valid JSON"},
      {"body missing", Json{{"name", "completed"}}, "body"},
      {"body not a string", Json{{"name", "completed"}, {"body", Json::parse(kFullSummary)}},
       "body"},
  };
  for (const Case& c : cases) {
    platform.log.lines.clear();
    EXPECT_EQ(decode(c.message), createEmptyCheckoutCompletedEvent(std::nullopt)) << c.name;
    const std::vector<std::string> lines = logLines();
    ASSERT_EQ(lines.size(), 1U) << c.name;
    EXPECT_THAT(lines[0], StartsWith("error|[VembaCheckoutKit] (Error) - Error decoding "
                                     "\"completed\" event - "));
    EXPECT_THAT(lines[0], HasSubstr(c.descriptionPart)) << c.name;
  }
}

// Each edit applied to the full summary must discard the whole summary (or must not).
TEST_F(CompletedEventDecoderTest, OneBadFieldAnywhereDiscardsTheWholeSummary) {
  struct Case {
    const char* pointer;  // JSON pointer into the summary
    Json value;           // replacement; discarded() = remove the key
    bool decodes;
  };
  const Json remove = Json(Json::value_t::discarded);
  const Case cases[] = {
      {"/orderDetails", "x", false},
      {"/orderDetails/id", remove, false},
      {"/orderDetails/id", nullptr, false},
      {"/orderDetails/email", nullptr, true},
      {"/orderDetails/email", false, false},
      {"/orderDetails/billingAddress", nullptr, true},
      {"/orderDetails/cart/token", remove, false},
      {"/orderDetails/cart/lines", remove, false},
      {"/orderDetails/cart/lines", Json::array(), true},
      {"/orderDetails/cart/lines/0/title", remove, false},
      {"/orderDetails/cart/lines/0/quantity", 2.5, false},
      {"/orderDetails/cart/lines/0/quantity", 2, true},
      {"/orderDetails/cart/lines/0/price/amount", "24.50", false},
      {"/orderDetails/cart/lines/0/image/lg", remove, false},
      {"/orderDetails/cart/lines/0/image", nullptr, true},
      {"/orderDetails/cart/lines/0/discounts/0/value", "10", false},
      {"/orderDetails/cart/price/discounts", nullptr, true},
      {"/orderDetails/cart/price/discounts", Json::object(), false},
      {"/orderDetails/deliveries/0/method", remove, false},
      {"/orderDetails/deliveries/0/details/location/city", true, false},
      {"/orderDetails/paymentMethods/0/details/brand", 4, false},
      {"/orderDetails/paymentMethods/0/type", remove, false},
      {"/orderDetails/paymentMethods", Json::object(), false},
      {"/orderDetails/cart/lines/0/extra", "ignored", true},
  };
  const CheckoutCompletedEvent empty = createEmptyCheckoutCompletedEvent(std::nullopt);
  for (const Case& c : cases) {
    Json summary = Json::parse(kFullSummary);
    const Json::json_pointer pointer(c.pointer);
    if (c.value.is_discarded()) {
      summary[pointer.parent_pointer()].erase(pointer.back());
    } else {
      summary[pointer] = c.value;
    }
    platform.log.lines.clear();
    const CheckoutCompletedEvent event = decode(envelope(summary.dump()));
    EXPECT_EQ(event != empty, c.decodes) << c.pointer << " = " << c.value.dump();
    EXPECT_EQ(platform.log.lines.size(), c.decodes ? 0U : 1U) << c.pointer;
  }
}

TEST(CheckoutCompletedEventTest, EmptyEventEncodesFourEmptyPrices) {
  EXPECT_EQ(toJson(createEmptyCheckoutCompletedEvent(std::nullopt)).dump(),
            R"({"orderDetails":{"cart":{"lines":[],"price":{"shipping":{},"subtotal":{},)"
            R"("taxes":{},"total":{}},"token":""},"id":""}})");
  EXPECT_EQ(createEmptyCheckoutCompletedEvent("order-1").orderDetails.id, "order-1");
}

// Every key read is written back (a null payment detail as null); unknown keys are not.
TEST(CheckoutCompletedEventTest, EncodingWritesBackEveryKeyRead) {
  const auto decoded = json::decodeText(kFullSummary, decodeCheckoutCompletedEvent);
  ASSERT_TRUE(decoded);
  Json expected = Json::parse(kFullSummary);
  expected.erase("unknownTopLevel");
  EXPECT_EQ(toJson(*decoded), expected);
}

}  // namespace
}  // namespace vemba::checkout
