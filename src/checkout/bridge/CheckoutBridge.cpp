#include "checkout/bridge/CheckoutBridge.h"

#include <nlohmann/json.hpp>

#include "checkout/bridge/BridgeEnvelope.h"
#include "checkout/bridge/CheckoutCompletedEventDecoder.h"
#include "checkout/bridge/CheckoutErrorEventDecoder.h"
#include "checkout/bridge/WebPixelsEventDecoder.h"
#include "checkout/config/ContractViolation.h"
#include "common/JsonDecoding.h"
#include "platform/ScriptEvaluator.h"
#include "platform/ScriptMessage.h"

namespace vemba::checkout {
namespace {

constexpr std::string_view kBlockingViolation =
    "the checkout page sent a \"checkoutBlockingEvent\" body that is neither \"true\" nor "
    "\"false\"";

// The dispatch script, around the argument text (which appears twice).
constexpr std::string_view kScriptHead =
    "if (window.MobileCheckoutSdk && window.MobileCheckoutSdk.dispatchMessage) {\n"
    "\twindow.MobileCheckoutSdk.dispatchMessage(";
constexpr std::string_view kScriptMiddle =
    ");\n"
    "} else {\n"
    "\twindow.addEventListener('mobileCheckoutBridgeReady', function () {\n"
    "\t\twindow.MobileCheckoutSdk.dispatchMessage(";
constexpr std::string_view kScriptTail =
    ");\n"
    "\t}, {passive: true, once: true});\n"
    "}";

using WebEvent = CheckoutBridge::WebEvent;

WebEvent decodeErrorMessage(const json::Json& envelope) {
  const CheckoutErrorEvent event = CheckoutErrorEventDecoder::decode(envelope);
  const CheckoutErrorCode code = checkoutErrorCodeFrom(event.code);
  switch (event.group) {
    case CheckoutErrorGroup::configuration:
      return WebEvent{WebEvent::ConfigurationError{event.reason, code}};
    case CheckoutErrorGroup::unrecoverable:
      return WebEvent{WebEvent::CheckoutUnavailable{event.reason, code}};
    case CheckoutErrorGroup::expired:
      return WebEvent{WebEvent::CheckoutExpired{event.reason, code}};
    case CheckoutErrorGroup::authentication:
    case CheckoutErrorGroup::checkout:
    case CheckoutErrorGroup::unsupported:
      break;
  }
  return WebEvent{WebEvent::Unsupported{std::string(CheckoutBridge::kErrorMessage)}};
}

WebEvent decodeBlockingMessage(const json::Json& envelope) {
  const std::string_view text = requireEnvelopeString(envelope, kEnvelopeBodyKey);
  if (text == CheckoutBridge::kBlockingTrue) {
    return WebEvent{WebEvent::CheckoutModalToggled{true}};
  }
  if (text == CheckoutBridge::kBlockingFalse) {
    return WebEvent{WebEvent::CheckoutModalToggled{false}};
  }
  contractViolation(kBlockingViolation);
}

WebEvent decodeEnvelope(const json::Json& root, const json::JsonPath& path) {
  const json::Json& envelope = json::requireObject(root, path);
  const std::string_view name = requireEnvelopeString(envelope, kEnvelopeNameKey);

  if (name == CheckoutBridge::kCompletedMessage) {
    return WebEvent{WebEvent::CheckoutComplete{CheckoutCompletedEventDecoder::decode(envelope)}};
  }
  if (name == CheckoutBridge::kErrorMessage) {
    return decodeErrorMessage(envelope);
  }
  if (name == CheckoutBridge::kBlockingMessage) {
    return decodeBlockingMessage(envelope);
  }
  if (name == CheckoutBridge::kWebPixelsMessage) {
    auto pixel = WebPixelsEventDecoder::decode(envelope);
    if (!pixel) {
      throw json::DecodingFailure(pixel.error());
    }
    return WebEvent{WebEvent::WebPixels{std::move(pixel).value()}};
  }
  return WebEvent{WebEvent::Unsupported{std::string(name)}};
}

// Escapes U+2028 and U+2029 inside the body's string literals as \u2028 and \u2029: the same
// string values in every JavaScript engine, including those where the raw characters end a
// literal. Everything else is inserted unchanged.
std::string escapeForScript(std::string_view body) {
  std::string out;
  out.reserve(body.size());
  bool inString = false;
  for (std::size_t i = 0; i < body.size(); ++i) {
    const char c = body[i];
    if (inString && c == '\\' && i + 1 < body.size()) {
      out.push_back(c);
      out.push_back(body[++i]);
      continue;
    }
    if (c == '"') {
      inString = !inString;
    }
    if (inString && c == '\xE2' && i + 2 < body.size() && body[i + 1] == '\x80' &&
        (body[i + 2] == '\xA8' || body[i + 2] == '\xA9')) {
      out.append(body[i + 2] == '\xA8' ? "\\u2028" : "\\u2029");
      i += 2;
      continue;
    }
    out.push_back(c);
  }
  return out;
}

class BridgeAsProtocol final : public CheckoutBridgeProtocol {
 public:
  void instrument(platform::ScriptEvaluator& webView,
                  const InstrumentationPayload& payload) const override {
    CheckoutBridge::instrument(webView, payload);
  }
  void sendMessage(platform::ScriptEvaluator& webView, std::string_view messageName,
                   std::optional<std::string_view> messageBody) const override {
    CheckoutBridge::sendMessage(webView, messageName, messageBody);
  }
};

}  // namespace

Expected<WebEvent, BridgeError> CheckoutBridge::decode(const platform::ScriptMessage& message) {
  const std::string* text = std::get_if<std::string>(&message.body);
  if (text == nullptr) {
    return Unexpected{BridgeError::invalidBridgeEvent(std::nullopt)};
  }
  return decode(*text);
}

Expected<WebEvent, BridgeError> CheckoutBridge::decode(std::string_view envelopeText) {
  Expected<WebEvent, json::DecodingError> event =
      json::decodeDocument(readEnvelope(envelopeText), decodeEnvelope);
  if (!event) {
    return Unexpected{BridgeError::invalidBridgeEvent(event.error().toError())};
  }
  return std::move(event).value();
}

std::string CheckoutBridge::script(std::string_view messageName,
                                   std::optional<std::string_view> messageBody) {
  std::string argument;
  argument.append("'").append(messageName).append("'");
  if (messageBody) {
    argument.append(", ").append(escapeForScript(*messageBody));
  }
  std::string text;
  text.reserve(kScriptHead.size() + kScriptMiddle.size() + kScriptTail.size() +
               2 * argument.size());
  text.append(kScriptHead)
      .append(argument)
      .append(kScriptMiddle)
      .append(argument)
      .append(kScriptTail);
  return text;
}

void CheckoutBridge::sendMessage(platform::ScriptEvaluator& webView, std::string_view messageName,
                                 std::optional<std::string_view> messageBody) {
  webView.evaluateJavaScript(script(messageName, messageBody));
}

void CheckoutBridge::instrument(platform::ScriptEvaluator& webView,
                                const InstrumentationPayload& payload) {
  if (std::optional<std::string> body = toJson(SdkToWebEvent<InstrumentationPayload>{payload})) {
    sendMessage(webView, kInstrumentationMessage, *body);
  }
}

const CheckoutBridgeProtocol& CheckoutBridge::asProtocol() {
  static const BridgeAsProtocol instance;
  return instance;
}

}  // namespace vemba::checkout
