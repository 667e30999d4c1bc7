#include "checkout/bridge/CheckoutErrorEventDecoder.h"

#include <nlohmann/json.hpp>

#include "checkout/bridge/BridgeEnvelope.h"
#include "checkout/config/ContractViolation.h"
#include "checkout/config/OSLogger.h"
#include "common/JsonFields.h"

namespace vemba::checkout {
namespace {

constexpr std::string_view kDecodeFailureLog = "Error decoding \"error\" event - ";
constexpr std::string_view kFallbackReason = "Decoded error could not be parsed.";
constexpr std::string_view kEmptyArrayViolation =
    "the checkout page sent an \"error\" message whose body is an empty array";

constexpr std::string_view kGroupTypeName = "CheckoutErrorGroup";
constexpr std::array<std::string_view, 6> kGroupRawValues = {
    "authentication", "configuration", "unrecoverable", "checkout", "expired", "unsupported"};

}  // namespace

std::string_view rawValue(CheckoutErrorGroup group) {
  return kGroupRawValues.at(static_cast<std::size_t>(group));
}

std::optional<CheckoutErrorGroup> checkoutErrorGroupFrom(std::string_view raw) {
  for (const CheckoutErrorGroup group : kAllCheckoutErrorGroups) {
    if (rawValue(group) == raw) {
      return group;
    }
  }
  return std::nullopt;
}

// Keys equal the field names; "group" is required and must be one of the six raw values.
constexpr auto jsonFields(json::Tag<CheckoutErrorEvent> /*record*/) {
  using R = CheckoutErrorEvent;
  using GroupCodec =
      json::RawValueCodec<CheckoutErrorGroup, rawValue, checkoutErrorGroupFrom, kGroupTypeName>;
  return json::fields(json::field<GroupCodec>("group", &R::group), json::field("code", &R::code),
                      json::field("flowType", &R::flowType), json::field("reason", &R::reason),
                      json::field("type", &R::type));
}

CheckoutErrorEvent decodeCheckoutErrorEvent(const json::Json& value, const json::JsonPath& path) {
  return json::decodeRecord<CheckoutErrorEvent>(value, path);
}

json::Json encodeCheckoutErrorEvent(const CheckoutErrorEvent& event) {
  return json::encodeRecord(event);
}

CheckoutErrorEvent CheckoutErrorEventDecoder::fallbackEvent() {
  CheckoutErrorEvent event;
  event.group = CheckoutErrorGroup::unsupported;
  event.reason = std::string(kFallbackReason);
  return event;
}

CheckoutErrorEvent CheckoutErrorEventDecoder::decode(const json::Json& envelope) {
  std::vector<CheckoutErrorEvent> events;
  try {
    const std::string_view body = requireEnvelopeString(envelope, kEnvelopeBodyKey);
    Expected<std::vector<CheckoutErrorEvent>, json::DecodingError> decoded =
        json::decodeText(body, [](const json::Json& value, const json::JsonPath& path) {
          return json::decodeArray(value, path, decodeCheckoutErrorEvent);
        });
    if (!decoded) {
      throw json::DecodingFailure(decoded.error());
    }
    events = std::move(decoded).value();
  } catch (const json::DecodingFailure& failure) {
    OSLogger::shared().error(std::string(kDecodeFailureLog) + failure.error().description());
    return fallbackEvent();
  }
  // The page always sends at least one error; an empty array breaks that promise.
  if (events.empty()) {
    contractViolation(kEmptyArrayViolation);
  }
  return std::move(events.front());
}

}  // namespace vemba::checkout
