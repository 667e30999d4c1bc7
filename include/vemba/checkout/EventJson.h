// JSON text of the checkout's event and error records, for hosts that store, log or forward what
// their delegate receives:
//
//   const std::string text = vemba::checkout::toJson(event);  // a CheckoutCompletedEvent
//   const auto again = vemba::checkout::fromJson<vemba::checkout::CheckoutCompletedEvent>(text);
//   if (!again) log(again.error().description);  // e.g. Key not found at "orderDetails.id": ...
//
// Text in and text out (std::string, std::string_view), not nlohmann::json documents, although
// the library links nlohmann-json: a host parses the text with whatever JSON library it already
// uses, the library's own stays an implementation detail it can change or hide, and this header
// builds without it. The cost is one parse more for a host that wants a document; these are
// small records, once per event.
//
// Shapes. Records are JSON objects whose keys are their field names (one exception:
// Location::locationProtocol is "protocol"), written compactly with every "/" escaped as "\/".
// Absent optionals are left out; required fields are always written.
// - CheckoutCompletedEvent: {"orderDetails": {...}}, the order summary as the page sends it.
// - PixelEvent: {"standardEvent": <StandardEvent>} or {"customEvent": <CustomEvent>}; every
//   field of both is optional; a StandardEvent's "data" is a StandardEventData, a CustomEvent's
//   "customData" the JSON text of the merchant's data, as a string.
// - Context, StandardEventData: the records under a pixel event's "context" and "data".
// - CustomData: {} (it carries nothing; any object reads as it).
// - CheckoutErrorCode: its raw value as a JSON string, e.g. "cart_expired".
// - CheckoutUnavailable: {"clientError": <CheckoutErrorCode>} or {"httpError": <status>}.
// - CheckoutError: one object; "case" names the case, beside that case's fields:
//     {"case":"sdkError","underlying":{"domain":"URLError","code":-1009,"description":"..."},
//      "recoverable":true}
//     {"case":"configurationError","message":"...","code":<CheckoutErrorCode>,"recoverable":false}
//     {"case":"checkoutUnavailable","message":"...","code":<CheckoutUnavailable>,
//      "recoverable":true}
//     {"case":"checkoutExpired","message":"...","code":<CheckoutErrorCode>,"recoverable":false}
//   every field shown is required; "underlying" is a vemba::Error, its code a 32-bit integer.
//
// fromJson reads these shapes strictly: the text must be one JSON value; a required key that is
// missing or null fails, a value of the wrong type fails, a string that names no case fails, an
// integer with a fraction or out of range fails; a missing or null optional is absent; unknown
// keys are ignored. A failure is a vemba::Error of the domain "DecodingError" (code 4865 for a
// missing or null value, 4864 otherwise) whose description names the JSON path that failed.
//
// Round trip: fromJson<T>(toJson(value)) gives back a value equal to `value`, with two
// exceptions for values a host builds itself (the kit's own records never contain them): a string
// that is not valid UTF-8 is written with U+FFFD in place of each invalid sequence, and a number
// that is not finite is written as null (so it reads back absent, or fails where it is required).
//
// Stateless functions; any thread. toJson never throws (beyond std::bad_alloc).
#pragma once

#include <string>
#include <string_view>
#include <type_traits>

#include "vemba/Error.h"
#include "vemba/Expected.h"
#include "vemba/Export.h"
#include "vemba/checkout/CheckoutError.h"
#include "vemba/checkout/CheckoutErrorCode.h"
#include "vemba/checkout/events/CheckoutCompletedEvent.h"
#include "vemba/checkout/events/Context.h"
#include "vemba/checkout/events/PixelEvent.h"
#include "vemba/checkout/events/StandardEventData.h"

namespace vemba::checkout {

VEMBA_EXPORT std::string toJson(const CheckoutCompletedEvent& event);
// A StandardEvent or CustomEvent passed here is written as the PixelEvent it makes.
VEMBA_EXPORT std::string toJson(const PixelEvent& event);
VEMBA_EXPORT std::string toJson(const Context& context);
VEMBA_EXPORT std::string toJson(const StandardEventData& data);
VEMBA_EXPORT std::string toJson(const CustomData& data);
VEMBA_EXPORT std::string toJson(const CheckoutError& error);
VEMBA_EXPORT std::string toJson(CheckoutErrorCode code);
VEMBA_EXPORT std::string toJson(const CheckoutUnavailable& code);

// The types fromJson reads.
template <typename T>
inline constexpr bool kHasEventJson =
    std::is_same_v<T, CheckoutCompletedEvent> || std::is_same_v<T, PixelEvent> ||
    std::is_same_v<T, Context> || std::is_same_v<T, StandardEventData> ||
    std::is_same_v<T, CustomData> || std::is_same_v<T, CheckoutError> ||
    std::is_same_v<T, CheckoutErrorCode> || std::is_same_v<T, CheckoutUnavailable>;

// The value the JSON text `text` holds, or the DecodingError saying where it does not.
template <typename T>
requires kHasEventJson<T> Expected<T, Error> fromJson(std::string_view text);

template <>
VEMBA_EXPORT Expected<CheckoutCompletedEvent, Error> fromJson<CheckoutCompletedEvent>(
    std::string_view text);
template <>
VEMBA_EXPORT Expected<PixelEvent, Error> fromJson<PixelEvent>(std::string_view text);
template <>
VEMBA_EXPORT Expected<Context, Error> fromJson<Context>(std::string_view text);
template <>
VEMBA_EXPORT Expected<StandardEventData, Error> fromJson<StandardEventData>(std::string_view text);
template <>
VEMBA_EXPORT Expected<CustomData, Error> fromJson<CustomData>(std::string_view text);
template <>
VEMBA_EXPORT Expected<CheckoutError, Error> fromJson<CheckoutError>(std::string_view text);
template <>
VEMBA_EXPORT Expected<CheckoutErrorCode, Error> fromJson<CheckoutErrorCode>(std::string_view text);
template <>
VEMBA_EXPORT Expected<CheckoutUnavailable, Error> fromJson<CheckoutUnavailable>(
    std::string_view text);

}  // namespace vemba::checkout
