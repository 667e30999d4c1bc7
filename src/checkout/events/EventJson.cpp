// The host-facing JSON text of the checkout's records: each function wraps the record's one coder.
#include "vemba/checkout/EventJson.h"

#include <utility>

#include "checkout/errors/CheckoutErrorCoding.h"
#include "checkout/events/CheckoutCompletedEventCoding.h"
#include "checkout/events/ContextCoding.h"
#include "checkout/events/PixelEventCoding.h"
#include "checkout/events/StandardEventDataCoding.h"
#include "common/JsonDecoding.h"

namespace vemba::checkout {
namespace {

std::string jsonText(const json::Json& value) {
  return json::dumpCompact(value, json::InvalidUtf8::replace);
}

template <typename T>
Expected<T, Error> decoded(std::string_view text,
                           T (*decode)(const json::Json&, const json::JsonPath&)) {
  Expected<T, json::DecodingError> result = json::decodeText(text, decode);
  if (!result) {
    return Unexpected{result.error().toError()};
  }
  return std::move(result).value();
}

}  // namespace

std::string toJson(const CheckoutCompletedEvent& event) {
  return jsonText(encodeCheckoutCompletedEvent(event));
}

std::string toJson(const PixelEvent& event) {
  return jsonText(encodePixelEvent(event));
}

std::string toJson(const Context& context) {
  return jsonText(encodeContext(context));
}

std::string toJson(const StandardEventData& data) {
  return jsonText(encodeStandardEventData(data));
}

std::string toJson(const CustomData& data) {
  return jsonText(encodeCustomData(data));
}

std::string toJson(const CheckoutError& error) {
  return jsonText(encodeCheckoutError(error));
}

std::string toJson(CheckoutErrorCode code) {
  return jsonText(encodeCheckoutErrorCode(code));
}

std::string toJson(const CheckoutUnavailable& code) {
  return jsonText(encodeCheckoutUnavailable(code));
}

template <>
Expected<CheckoutCompletedEvent, Error> fromJson<CheckoutCompletedEvent>(std::string_view text) {
  return decoded(text, decodeCheckoutCompletedEvent);
}

template <>
Expected<PixelEvent, Error> fromJson<PixelEvent>(std::string_view text) {
  return decoded(text, decodePixelEvent);
}

template <>
Expected<Context, Error> fromJson<Context>(std::string_view text) {
  return decoded(text, decodeContext);
}

template <>
Expected<StandardEventData, Error> fromJson<StandardEventData>(std::string_view text) {
  return decoded(text, decodeStandardEventData);
}

template <>
Expected<CustomData, Error> fromJson<CustomData>(std::string_view text) {
  return decoded(text, decodeCustomData);
}

template <>
Expected<CheckoutError, Error> fromJson<CheckoutError>(std::string_view text) {
  return decoded(text, decodeCheckoutError);
}

template <>
Expected<CheckoutErrorCode, Error> fromJson<CheckoutErrorCode>(std::string_view text) {
  return decoded(text, decodeCheckoutErrorCode);
}

template <>
Expected<CheckoutUnavailable, Error> fromJson<CheckoutUnavailable>(std::string_view text) {
  return decoded(text, decodeCheckoutUnavailable);
}

}  // namespace vemba::checkout
