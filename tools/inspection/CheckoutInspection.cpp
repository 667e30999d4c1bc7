// The checkout bridge's decoding of one script message, as the inspection header gives it.
#include <nlohmann/json.hpp>

#include "Inspection.h"
#include "checkout/bridge/CheckoutBridge.h"
#include "checkout/errors/CheckoutErrorCoding.h"
#include "checkout/events/CheckoutCompletedEventCoding.h"
#include "checkout/events/PixelEventCoding.h"
#include "checkout/webview/CheckoutErrorMapping.h"
#include "platform/ScriptMessage.h"

namespace vemba::inspection {
namespace {

using checkout::CheckoutBridge;
using checkout::CheckoutError;
using Line = nlohmann::ordered_json;
using WebEvent = CheckoutBridge::WebEvent;

Line optionalText(const std::optional<std::string>& text) {
  return text ? Line(*text) : Line(nullptr);
}

template <typename ErrorEvent>
Line errorEventJson(const char* name, const ErrorEvent& event) {
  Line out;
  out["event"] = name;
  out["message"] = optionalText(event.message);
  out["code"] = checkout::rawValue(event.code);
  return out;
}

Line eventJson(const WebEvent& event) {
  return std::visit(
      [](const auto& value) -> Line {
        using T = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<T, WebEvent::CheckoutExpired>) {
          return errorEventJson("checkoutExpired", value);
        } else if constexpr (std::is_same_v<T, WebEvent::CheckoutUnavailable>) {
          return errorEventJson("checkoutUnavailable", value);
        } else if constexpr (std::is_same_v<T, WebEvent::ConfigurationError>) {
          return errorEventJson("configurationError", value);
        } else if constexpr (std::is_same_v<T, WebEvent::CheckoutComplete>) {
          return Line{{"event", "checkoutComplete"},
                      {"payload", Line(checkout::encodeCheckoutCompletedEvent(value.event))}};
        } else if constexpr (std::is_same_v<T, WebEvent::CheckoutModalToggled>) {
          return Line{{"event", "checkoutModalToggled"}, {"modalVisible", value.modalVisible}};
        } else if constexpr (std::is_same_v<T, WebEvent::WebPixels>) {
          return Line{{"event", "webPixels"},
                      {"payload", value.event ? Line(checkout::encodePixelEvent(*value.event))
                                              : Line(nullptr)}};
        } else {
          return Line{{"event", "unsupported"}, {"name", value.name}};
        }
      },
      event.value);
}

// Text that is not UTF-8 (a page may post any bytes) is written with replacement characters.
std::string text(const Line& line) {
  return line.dump(-1, ' ', false, Line::error_handler_t::replace);
}

}  // namespace

std::string decodeCheckoutMessage(const std::optional<std::string>& stringBody,
                                  std::string_view otherBodyJson) {
  platform::ScriptMessage message;
  message.name = std::string(CheckoutBridge::kMessageHandlerName);
  if (stringBody) {
    message.body = *stringBody;
  } else {
    message.body = platform::ScriptMessage::NonStringBody{std::string(otherBodyJson)};
  }
  Expected<WebEvent, checkout::BridgeError> decoded = CheckoutBridge::decode(message);
  if (!decoded) {
    Line out;
    out["error"] = "invalidBridgeEvent";
    out["description"] = decoded.error().description();
    out["checkoutError"] = Line(
        checkout::encodeCheckoutError(checkout::checkoutErrorForBridgeFailure(decoded.error())));
    return text(out);
  }
  Line out = eventJson(decoded.value());
  if (const std::optional<CheckoutError> error = checkout::checkoutErrorForWebEvent(*decoded)) {
    out["checkoutError"] = Line(checkout::encodeCheckoutError(*error));
  }
  return text(out);
}

}  // namespace vemba::inspection
