// JSON decoding and encoding of the commerce data of standard pixel events. Keys equal the field
// names; every field is optional; a value of the wrong type anywhere fails the whole record being
// decoded (for event data: the whole StandardEventData).
#pragma once

#include "common/JsonFields.h"
#include "vemba/checkout/events/StandardEventData.h"

namespace vemba::checkout {

// Each throws json::DecodingFailure.
StandardEventData decodeStandardEventData(const json::Json& value, const json::JsonPath& path);
json::Json encodeStandardEventData(const StandardEventData& data);

// Records no other record refers to.
CartLine decodeCartLine(const json::Json& value, const json::JsonPath& path);
json::Json encodeCartLine(const CartLine& line);
PricingPercentageValue decodePricingPercentageValue(const json::Json& value,
                                                    const json::JsonPath& path);
json::Json encodePricingPercentageValue(const PricingPercentageValue& value);

}  // namespace vemba::checkout

// A field that holds StandardEventData, in any record, is coded by the two functions above.
template <>
struct vemba::json::Codec<vemba::checkout::StandardEventData>
    : FunctionCodec<checkout::StandardEventData, checkout::decodeStandardEventData,
                    checkout::encodeStandardEventData> {};
