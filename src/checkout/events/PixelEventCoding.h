// JSON decoding and encoding of the public pixel event records. Every field of StandardEvent and
// CustomEvent is optional: absent keys give absent fields and absent fields are left out when
// encoding. A PixelEvent is an object with exactly one key naming its alternative,
// "customEvent" or "standardEvent", holding that event.
#pragma once

#include "common/JsonDecoding.h"
#include "vemba/checkout/events/PixelEvent.h"

namespace vemba::checkout {

// Each throws json::DecodingFailure.
StandardEvent decodeStandardEvent(const json::Json& value, const json::JsonPath& path);
json::Json encodeStandardEvent(const StandardEvent& event);
CustomEvent decodeCustomEvent(const json::Json& value, const json::JsonPath& path);
json::Json encodeCustomEvent(const CustomEvent& event);
CustomData decodeCustomData(const json::Json& value, const json::JsonPath& path);
json::Json encodeCustomData(const CustomData& data);
PixelEvent decodePixelEvent(const json::Json& value, const json::JsonPath& path);
json::Json encodePixelEvent(const PixelEvent& event);

}  // namespace vemba::checkout
