// JSON coding of the checkout half's public error values: CheckoutErrorCode as its raw string,
// CheckoutUnavailable as {"clientError": <code>} or {"httpError": <status>}, CheckoutError as one
// object whose "case" names the case beside that case's fields (the shapes hosts see, described
// in vemba/checkout/EventJson.h). Decoding is strict (see JsonDecoding.h); every field is
// required. Stateless; any thread.
#pragma once

#include "common/JsonDecoding.h"
#include "vemba/checkout/CheckoutError.h"
#include "vemba/checkout/CheckoutErrorCode.h"

namespace vemba::checkout {

// Each decode throws json::DecodingFailure.
CheckoutErrorCode decodeCheckoutErrorCode(const json::Json& value, const json::JsonPath& path);
json::Json encodeCheckoutErrorCode(CheckoutErrorCode code);
CheckoutUnavailable decodeCheckoutUnavailable(const json::Json& value, const json::JsonPath& path);
json::Json encodeCheckoutUnavailable(const CheckoutUnavailable& code);
CheckoutError decodeCheckoutError(const json::Json& value, const json::JsonPath& path);
json::Json encodeCheckoutError(const CheckoutError& error);

}  // namespace vemba::checkout
