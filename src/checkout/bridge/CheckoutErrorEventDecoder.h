// Reading CheckoutErrorEvent from JSON, and the tolerant decoder of an "error" bridge message.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "checkout/bridge/CheckoutErrorEvent.h"

namespace vemba::json {
class JsonPath;
}  // namespace vemba::json

namespace vemba::checkout {

// Strict record coding: "group" is required and must be one of the six raw values; "code",
// "flowType", "reason" and "type" are optional strings; unknown keys are ignored. Decoding
// throws json::DecodingFailure. Encoding writes only the present optionals.
CheckoutErrorEvent decodeCheckoutErrorEvent(const nlohmann::json& value,
                                            const json::JsonPath& path);
nlohmann::json encodeCheckoutErrorEvent(const CheckoutErrorEvent& event);

struct CheckoutErrorEventDecoder {
  // `envelope`: the bridge message object (keys "name" and "body"), whose "body" is a string of
  // JSON text holding an array of error events. Returns the first element (later ones are
  // ignored). Never fails: when the body cannot be read as such an array, logs
  // "Error decoding \"error\" event - " + the reason at error level and returns fallbackEvent().
  // An array with no element at all is a contract violation and ends the process.
  static CheckoutErrorEvent decode(const nlohmann::json& envelope);

  // Group `unsupported`, reason "Decoded error could not be parsed.", nothing else.
  static CheckoutErrorEvent fallbackEvent();
};

}  // namespace vemba::checkout
