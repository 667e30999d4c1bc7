#include "checkout/bridge/CheckoutBridge.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <iostream>
#include <nlohmann/json.hpp>

#include "CheckoutTestSupport.h"
#include "checkout/bridge/CheckoutErrorEventDecoder.h"
#include "checkout/config/ContractViolation.h"
#include "checkout/config/OSLogger.h"
#include "common/JsonDecoding.h"
#include "platform/ScopedServices.h"
#include "platform/ScriptEvaluator.h"
#include "platform/ScriptMessage.h"

namespace vemba::checkout {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using tests::envelope;
using WebEvent = CheckoutBridge::WebEvent;

platform::ScriptMessage stringMessage(std::string text) {
  return platform::ScriptMessage{std::string(CheckoutBridge::kMessageHandlerName), std::move(text)};
}

WebEvent decodeOk(const std::string& text) {
  Expected<WebEvent, BridgeError> result = CheckoutBridge::decode(stringMessage(text));
  EXPECT_TRUE(result.hasValue()) << text << " -> " << result.error().description();
  return result ? result.value() : WebEvent{WebEvent::Unsupported{"<failed>"}};
}

BridgeError decodeFailure(const std::string& text) {
  Expected<WebEvent, BridgeError> result = CheckoutBridge::decode(stringMessage(text));
  EXPECT_FALSE(result.hasValue());
  return result ? BridgeError::unencodableInstrumentation(std::nullopt) : result.error();
}

WebEvent unsupported(std::string name) {
  return WebEvent{WebEvent::Unsupported{std::move(name)}};
}

class CheckoutBridgeTest : public tests::CheckoutTest {};

TEST_F(CheckoutBridgeTest, MalformedErrorBodiesAreLoggedAndIgnored) {
  const std::vector<std::string> texts = {
      envelope("error", "not json"),
      envelope("error", R"({"group":"expired"})"),
      envelope("error", R"([{"group":"expired","code":5}])"),
      // A later element that fails fails the whole array.
      envelope("error", R"([{"group":"expired"},{"group":7}])"),
      R"({"name":"error"})",
  };
  for (const std::string& text : texts) {
    platform.log.lines.clear();
    EXPECT_EQ(decodeOk(text), unsupported("error")) << text;
    ASSERT_EQ(platform.log.lines.size(), 1U) << text;
    EXPECT_THAT(platform.log.lines[0].text,
                StartsWith("[VembaCheckoutKit] (Error) - Error decoding \"error\" event - "));
    EXPECT_EQ(platform.log.lines[0].severity, platform::LogSeverity::error);
  }
  platform.log.lines.clear();
  decodeOk(envelope("error", R"([{"group":"Expired"}])"));
  EXPECT_THAT(logLines(),
              ElementsAre("error|[VembaCheckoutKit] (Error) - Error decoding \"error\" event - "
                          "Data corrupted at \"[0].group\": Cannot initialize CheckoutErrorGroup "
                          "from invalid String value Expired"));
}

TEST(CheckoutErrorEventTest, EveryKeyIsReadAndWrittenBack) {
  const auto element = nlohmann::json::parse(
      R"({"code":"c","flowType":"f","group":"expired","reason":"r","type":"t"})");
  EXPECT_EQ(encodeCheckoutErrorEvent(decodeCheckoutErrorEvent(element, {})), element);
}

TEST_F(CheckoutBridgeTest, BlockingPixelAndUnsupportedNames) {
  const WebEvent shown{WebEvent::CheckoutModalToggled{true}};
  const WebEvent hidden{WebEvent::CheckoutModalToggled{false}};
  const std::pair<std::string, WebEvent> cases[] = {
      {envelope("checkoutBlockingEvent", "true"), shown},
      {envelope("checkoutBlockingEvent", "false"), hidden},
      // The pixel payload's own rules are the pixel decoder's: the bridge wraps what it gives, no
      // event for a type it does not know included.
      {envelope("webPixels", R"({"name":"x","event":{"id":"e","name":"x","timestamp":"t",)"
                             R"("type":"Standard","context":{}}})"),
       WebEvent{WebEvent::WebPixels{std::nullopt}}},
      // Names are exact and case-sensitive; other names' bodies are never read.
      {envelope("Completed", 1), unsupported("Completed")},
      {envelope("ERROR", "[]"), unsupported("ERROR")},
      {R"({"name":"presented","extra":{}})", unsupported("presented")},
      // Of repeated keys the last one counts.
      {R"({"name":"checkoutBlockingEvent","body":null,"body":"false"})", hidden},
      {R"({"name":"completed","body":"{}","name":"presented"})", unsupported("presented")},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(decodeOk(text), expected) << text;
  }
  EXPECT_THAT(platform.log.lines, IsEmpty());
}

TEST_F(CheckoutBridgeTest, DecodingFailures) {
  // A failure names its cause as a decode of the whole text as one document would. (A body that
  // is not a string has none: its failure is checked on the web view.)
  struct Case {
    std::string text;
    const char* description;
  };
  const Case cases[] = {
      {"not json", "Data corrupted at the top level: The given data was not valid JSON."},
      {"null", "Value not found at the top level: Expected object value but found null instead."},
      {R"(["name","error"])",
       "Type mismatch at the top level: Expected to decode object but found array instead."},
      {R"({"body":"true"})", "Key not found at \"name\": No value associated with key \"name\"."},
      {R"({"name":null})", "Value not found at \"name\": Expected a value but found null."},
      {R"({"name":1})",
       "Type mismatch at \"name\": Expected to decode String but found number instead."},
      {R"({"name":"checkoutBlockingEvent"})",
       "Key not found at \"body\": No value associated with key \"body\"."},
      {R"({"name":"checkoutBlockingEvent","body":true})",
       "Type mismatch at \"body\": Expected to decode String but found bool instead."},
      {R"({"name":"webPixels","body":{"name":"x"}})",
       "Type mismatch at \"body\": Expected to decode String but found object instead."},
      // The pixel payload inside the body is read as a document of its own.
      {envelope("webPixels", "{}"),
       "Key not found at \"name\": No value associated with key \"name\"."},
      {envelope("webPixels", "not json"),
       "Data corrupted at the top level: The given data was not valid JSON."},
  };
  for (const Case& c : cases) {
    const BridgeError error = decodeFailure(c.text);
    EXPECT_EQ(error.kind(), BridgeError::Kind::invalidBridgeEvent) << c.text;
    ASSERT_TRUE(error.underlying().has_value()) << c.text;
    EXPECT_EQ(error.underlying()->description, c.description) << c.text;
  }
}

// Writes each line on standard error, where a death test can see it.
struct StderrEchoSink final : platform::LogSink {
  void write(platform::LogSeverity severity, std::string_view subsystem, std::string_view,
             std::string_view line) override {
    std::cerr << platform::severityName(severity) << ' ' << subsystem << ' ' << line << std::endl;
  }
};

using CheckoutBridgeDeathTest = CheckoutBridgeTest;

TEST_F(CheckoutBridgeDeathTest,
       ContractViolationsAreLoggedAsFaultsWhateverTheLevelAndEndTheProcess) {
  const std::array<std::string, 3> cases[] = {
      {"error", "[]", ".*empty array"},
      {"checkoutBlockingEvent", "TRUE", ".*checkoutBlockingEvent"},
      {"checkoutBlockingEvent", "", ""},
      {"checkoutBlockingEvent", " true", ""}};
  StderrEchoSink echo;
  platform::Services echoing = platform.services();
  echoing.log = &echo;
  OSLogger::shared().setLogLevel(LogLevel::none);
  for (const auto& [name, body, reason] : cases) {
    EXPECT_DEATH(
        {
          const platform::ScopedServices scope(echoing);
          (void)CheckoutBridge::decode(envelope(name, body));
        },
        "fault com.vemba.VembaCheckoutKit vemba-checkout: contract violation: " + reason)
        << name << " " << body;
  }
  // A hook that returns does not prevent the end.
  EXPECT_DEATH(
      {
        const platform::ScopedServices scope(echoing);
        const ScopedContractViolationHook hook([](std::string_view /*reason*/) {});
        (void)CheckoutBridge::decode(envelope("error", "[]"));
      },
      "contract violation");
}

class RecordingScriptEvaluator final : public platform::ScriptEvaluator {
 public:
  void evaluateJavaScript(std::string_view script) override { scripts.emplace_back(script); }
  std::vector<std::string> scripts;
};

std::string expectedScript(const std::string& argument) {
  return "if (window.MobileCheckoutSdk && window.MobileCheckoutSdk.dispatchMessage) {\n"
         "\twindow.MobileCheckoutSdk.dispatchMessage(" +
         argument +
         ");\n} else {\n\twindow.addEventListener('mobileCheckoutBridgeReady', function () {\n"
         "\t\twindow.MobileCheckoutSdk.dispatchMessage(" +
         argument + ");\n\t}, {passive: true, once: true});\n}";
}

TEST_F(CheckoutBridgeTest, SendMessageScriptText) {
  RecordingScriptEvaluator webView;
  CheckoutBridge::sendMessage(webView, "presented");
  ASSERT_EQ(webView.scripts.size(), 1U);
  EXPECT_EQ(webView.scripts[0], expectedScript("'presented'"));

  // JSON text goes in as it is, except U+2028/U+2029 inside string literals, which become
  // escapes of the same characters.
  const std::string ls = "\xE2\x80\xA8";
  const std::string ps = "\xE2\x80\xA9";
  const std::string body =
      "{\"s\":\"q\\\"b\\\\c\\nd" + ls + "e" + ps + "\",\n\"t\":'x'," + ls + "\"u\":\"\\\\\"}";
  CheckoutBridge::sendMessage(webView, "instrumentation", body);
  ASSERT_EQ(webView.scripts.size(), 2U);
  EXPECT_EQ(webView.scripts[1],
            expectedScript("'instrumentation', {\"s\":\"q\\\"b\\\\c\\nd\\u2028e\\u2029\",\n"
                           "\"t\":'x'," +
                           ls + "\"u\":\"\\\\\"}"));
}

TEST_F(CheckoutBridgeTest, UnencodableInstrumentationIsLoggedWhateverTheLevelAndNotSent) {
  RecordingScriptEvaluator webView;
  const InstrumentationPayload payload{"bad \xFF name", 1, InstrumentationType::histogram, {}};
  OSLogger::shared().setLogLevel(LogLevel::none);
  CheckoutBridge::instrument(webView, payload);
  EXPECT_THAT(webView.scripts, IsEmpty());
  ASSERT_EQ(platform.log.lines.size(), 1U);
  EXPECT_THAT(logLines()[0],
              StartsWith("error|toJson() unencodableInstrumentation(EncodingError 316: "));
  EXPECT_EQ(platform.log.lines[0].subsystem, platform::kCheckoutLogSubsystem);
}

}  // namespace
}  // namespace vemba::checkout
