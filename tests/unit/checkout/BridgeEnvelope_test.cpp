#include "checkout/BridgeEnvelope.h"

#include <gtest/gtest.h>

#include <string>

#include "CheckoutTestSupport.h"
#include "checkout/CheckoutBridge.h"
#include "platform/ScriptMessage.h"

namespace vemba::checkout {
namespace {

using json::Json;

TEST(BridgeEnvelopeTest, DeepNestingOutsideTheKeptMembersIsOnlyValidated) {
  const std::string deep(100000, '[');
  EXPECT_FALSE(readEnvelope(R"({"name":"a","x":)" + deep + "}"));
  const std::string closed = deep + std::string(100000, ']');
  const std::optional<Json> read = readEnvelope(R"({"name":"a","body":)" + closed + "}");
  ASSERT_TRUE(read);
  EXPECT_EQ((*read)["body"], Json::array());
}

TEST(BridgeEnvelopeTest, RequiredStringFailsAsAStrictStringRead) {
  struct Case {
    const char* envelope;
    const char* description;
  };
  const Case cases[] = {
      {R"({})", "Key not found at \"body\": No value associated with key \"body\"."},
      {R"({"body":null})", "Value not found at \"body\": Expected a value but found null."},
      {R"({"body":{}})",
       "Type mismatch at \"body\": Expected to decode String but found object instead."},
      {R"({"body":[]})",
       "Type mismatch at \"body\": Expected to decode String but found array instead."},
      {R"({"body":false})",
       "Type mismatch at \"body\": Expected to decode String but found bool instead."},
  };
  for (const Case& c : cases) {
    const Json envelope = Json::parse(c.envelope);
    try {
      (void)requireEnvelopeString(envelope, kEnvelopeBodyKey);
      ADD_FAILURE() << c.envelope << " was read";
    } catch (const json::DecodingFailure& failure) {
      EXPECT_EQ(failure.error().description(), c.description) << c.envelope;
    }
  }
  const Json envelope = Json::parse(R"({"body":"text"})");
  EXPECT_EQ(requireEnvelopeString(envelope, kEnvelopeBodyKey), "text");
}

class BridgeEnvelopeDecodeTest : public testing::CheckoutTest {
 protected:
  static Expected<CheckoutBridge::WebEvent, BridgeError> decode(std::string text) {
    return CheckoutBridge::decode(
        platform::ScriptMessage{std::string(CheckoutBridge::kMessageHandlerName), std::move(text)});
  }
};

TEST_F(BridgeEnvelopeDecodeTest, FailuresNameTheSameCauseAsADocumentDecode) {
  struct Case {
    const char* envelope;
    const char* description;
  };
  const Case cases[] = {
      {"{\"name\":\"completed\",\"x\":\"\xFF\"}",
       "Data corrupted at the top level: The given data was not valid JSON."},
      {"null", "Value not found at the top level: Expected object value but found null instead."},
      {R"(["name"])",
       "Type mismatch at the top level: Expected to decode object but found array instead."},
      {R"("name")",
       "Type mismatch at the top level: Expected to decode object but found string instead."},
      {"7", "Type mismatch at the top level: Expected to decode object but found number instead."},
      {R"({"name":{"nested":"completed"}})",
       "Type mismatch at \"name\": Expected to decode String but found object instead."},
      {R"({"name":"webPixels","body":{"name":"x"}})",
       "Type mismatch at \"body\": Expected to decode String but found object instead."},
      {R"({"name":"checkoutBlockingEvent","body":"true","body":null})",
       "Value not found at \"body\": Expected a value but found null."},
  };
  for (const Case& c : cases) {
    const auto decoded = decode(c.envelope);
    ASSERT_FALSE(decoded) << c.envelope;
    ASSERT_TRUE(decoded.error().underlying()) << c.envelope;
    EXPECT_EQ(decoded.error().underlying()->description, c.description) << c.envelope;
  }
}

TEST_F(BridgeEnvelopeDecodeTest, RepeatedKeysResolveToTheLastValue) {
  using WebEvent = CheckoutBridge::WebEvent;
  const auto toggled = decode(R"({"name":"checkoutBlockingEvent","body":null,"body":"false"})");
  ASSERT_TRUE(toggled);
  EXPECT_EQ(*toggled, WebEvent{WebEvent::CheckoutModalToggled{false}});
  const auto renamed = decode(R"({"name":"completed","body":"{}","name":"presented"})");
  ASSERT_TRUE(renamed);
  EXPECT_EQ(*renamed, WebEvent{WebEvent::Unsupported{"presented"}});
  EXPECT_TRUE(platform.log.lines.empty());
}

}  // namespace
}  // namespace vemba::checkout
