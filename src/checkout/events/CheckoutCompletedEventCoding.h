// JSON decoding and encoding of the completed checkout's order summary. Keys equal the field
// names. Decoding is strict (see JsonDecoding.h): any fault anywhere fails the whole event;
// encoding writes required fields always and leaves absent optionals out.
#pragma once

#include "common/JsonDecoding.h"
#include "vemba/checkout/events/CheckoutCompletedEvent.h"

namespace vemba::checkout {

// Throws json::DecodingFailure.
CheckoutCompletedEvent decodeCheckoutCompletedEvent(const json::Json& value,
                                                    const json::JsonPath& path);
json::Json encodeCheckoutCompletedEvent(const CheckoutCompletedEvent& event);

}  // namespace vemba::checkout
