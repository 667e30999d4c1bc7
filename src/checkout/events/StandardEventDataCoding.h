// JSON decoding and encoding of the commerce data of standard pixel events. Keys equal the field
// names; every field is optional; a value of the wrong type anywhere fails the whole record being
// decoded (for event data: the whole StandardEventData).
#pragma once

#include "common/JsonDecoding.h"
#include "vemba/checkout/events/StandardEventData.h"

namespace vemba::checkout {

// Each throws json::DecodingFailure.
StandardEventData decodeStandardEventData(const json::Json& value, const json::JsonPath& path);
json::Json toJson(const StandardEventData& data);

// Decodes event data that arrives as a free-form object (see FreeFormJson.h): `value` must be an
// object readJsonObject accepts. The result, and whether it fails (though not the error's
// wording), is that of decodeStandardEventData(toJson(readJsonObject(value, path)), path), without
// building the free-form value or its JSON.
StandardEventData decodeFreeFormStandardEventData(const json::Json& value,
                                                  const json::JsonPath& path);

// Records no other record refers to.
CartLine decodeCartLine(const json::Json& value, const json::JsonPath& path);
json::Json toJson(const CartLine& line);
PricingPercentageValue decodePricingPercentageValue(const json::Json& value,
                                                    const json::JsonPath& path);
json::Json toJson(const PricingPercentageValue& value);

}  // namespace vemba::checkout
