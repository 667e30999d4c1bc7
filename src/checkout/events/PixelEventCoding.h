// JSON decoding and encoding of the public pixel event records. Every field is optional: absent
// keys give absent fields and absent fields are left out when encoding.
#pragma once

#include "common/JsonDecoding.h"
#include "vemba/checkout/events/PixelEvent.h"

namespace vemba::checkout {

// Each throws json::DecodingFailure.
StandardEvent decodeStandardEvent(const json::Json& value, const json::JsonPath& path);
json::Json toJson(const StandardEvent& event);
CustomEvent decodeCustomEvent(const json::Json& value, const json::JsonPath& path);
json::Json toJson(const CustomEvent& event);
CustomData decodeCustomData(const json::Json& value, const json::JsonPath& path);
json::Json toJson(const CustomData& data);

}  // namespace vemba::checkout
