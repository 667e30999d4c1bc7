#include "checkout/CheckoutErrorEventDecoder.h"

#include <nlohmann/json.hpp>

#include "checkout/BridgeEnvelope.h"
#include "checkout/ContractViolation.h"
#include "checkout/OSLogger.h"
#include "common/JsonDecoding.h"

namespace vemba::checkout {
namespace {

constexpr std::string_view kGroupKey = "group";
constexpr std::string_view kCodeKey = "code";
constexpr std::string_view kFlowTypeKey = "flowType";
constexpr std::string_view kReasonKey = "reason";
constexpr std::string_view kTypeKey = "type";

constexpr std::string_view kDecodeFailureLog = "Error decoding \"error\" event - ";
constexpr std::string_view kFallbackReason = "Decoded error could not be parsed.";
constexpr std::string_view kEmptyArrayViolation =
    "the checkout page sent an \"error\" message whose body is an empty array";

constexpr std::array<std::string_view, 6> kGroupRawValues = {
    "authentication", "configuration", "unrecoverable", "checkout", "expired", "unsupported"};

CheckoutErrorGroup decodeGroup(const json::Json& value, const json::JsonPath& path) {
  const std::string raw = json::decodeString(value, path);
  if (std::optional<CheckoutErrorGroup> group = checkoutErrorGroupFrom(raw)) {
    return *group;
  }
  json::fail(json::DecodingError::Kind::dataCorrupted, path,
             "Cannot initialize CheckoutErrorGroup from invalid String value " + raw);
}

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

CheckoutErrorEvent decodeCheckoutErrorEvent(const json::Json& value, const json::JsonPath& path) {
  const json::Json& object = json::requireObject(value, path);
  CheckoutErrorEvent event;
  event.group = decodeGroup(json::requireKey(object, kGroupKey, path), path / kGroupKey);
  event.code = json::optionalString(object, kCodeKey, path);
  event.flowType = json::optionalString(object, kFlowTypeKey, path);
  event.reason = json::optionalString(object, kReasonKey, path);
  event.type = json::optionalString(object, kTypeKey, path);
  return event;
}

json::Json encodeCheckoutErrorEvent(const CheckoutErrorEvent& event) {
  json::Json object = json::Json::object();
  object[std::string(kGroupKey)] = std::string(rawValue(event.group));
  const auto put = [&object](std::string_view key, const std::optional<std::string>& field) {
    if (field) {
      object[std::string(key)] = *field;
    }
  };
  put(kCodeKey, event.code);
  put(kFlowTypeKey, event.flowType);
  put(kReasonKey, event.reason);
  put(kTypeKey, event.type);
  return object;
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
