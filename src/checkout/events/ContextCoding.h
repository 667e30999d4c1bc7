// JSON decoding and encoding of a pixel event's browser context. Keys equal the field names,
// except Location::locationProtocol, carried under "protocol". Every field is optional; a value
// of the wrong type anywhere fails the whole context.
#pragma once

#include "common/JsonFields.h"
#include "vemba/checkout/events/Context.h"

namespace vemba::checkout {

// Throws json::DecodingFailure.
Context decodeContext(const json::Json& value, const json::JsonPath& path);
json::Json encodeContext(const Context& context);

}  // namespace vemba::checkout

// A field that holds a Context, in any record, is coded by the two functions above.
template <>
struct vemba::json::Codec<vemba::checkout::Context>
    : FunctionCodec<checkout::Context, checkout::decodeContext, checkout::encodeContext> {};
