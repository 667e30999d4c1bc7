#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "CheckoutTestSupport.h"
#include "checkout/bridge/CheckoutCompletedEventDecoder.h"
#include "vemba/checkout/EventJson.h"

namespace vemba::checkout {
namespace {

using Json = nlohmann::json;
using ::testing::HasSubstr;
using ::testing::StartsWith;

Json envelope(std::string_view body) {
  return Json{{"name", "completed"}, {"body", body}};
}

// A complete summary using every field once, and a key the model does not know: the bridge
// fuzzer's seed of the whole message (after its mode byte).
Json fullSummary() {
  const std::string seed = tests::corpusFile("checkout_bridge_fuzzer/completed_message_every_key");
  return Json::parse(Json::parse(seed.substr(1))["body"].get<std::string>());
}

class CompletedEventDecoderTest : public tests::CheckoutTest {
 protected:
  static CheckoutCompletedEvent decode(const Json& message) {
    return CheckoutCompletedEventDecoder::decode(message);
  }
};

// Every key read is written back (a null payment detail as null); unknown keys are not. (That
// fromJson reads it back, the bridge fuzzer checks on this seed.)
TEST_F(CompletedEventDecoderTest, AFullSummaryIsReadWithoutLoggingAndWrittenBackKeyForKey) {
  Json summary = fullSummary();
  const CheckoutCompletedEvent event = decode(envelope(summary.dump()));
  summary.erase("unknownTopLevel");
  EXPECT_EQ(Json::parse(toJson(event)), summary);
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
      {"body not a string", Json{{"name", "completed"}, {"body", fullSummary()}}, "body"},
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

// Each edit applied to the full summary must discard the whole summary (or fromJson fail), or not.
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
  const Json full = fullSummary();
  for (const Case& c : cases) {
    Json summary = full;
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
    EXPECT_EQ(fromJson<CheckoutCompletedEvent>(summary.dump()).hasValue(), c.decodes) << c.pointer;
  }
}

TEST(CheckoutCompletedEventTest, EmptyEventEncodesFourEmptyPrices) {
  EXPECT_EQ(toJson(createEmptyCheckoutCompletedEvent(std::nullopt)),
            R"({"orderDetails":{"cart":{"lines":[],"price":{"shipping":{},"subtotal":{},)"
            R"("taxes":{},"total":{}},"token":""},"id":""}})");
  EXPECT_EQ(createEmptyCheckoutCompletedEvent("order-1").orderDetails.id, "order-1");
  EXPECT_EQ(
      fromJson<CheckoutCompletedEvent>("{}").error(),
      (Error{"DecodingError", 4865,
             R"(Key not found at "orderDetails": No value associated with key "orderDetails".)"}));
}

}  // namespace
}  // namespace vemba::checkout
