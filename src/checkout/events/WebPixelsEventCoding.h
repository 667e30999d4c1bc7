// JSON decoding and encoding of the "webPixels" payload, and the building of a StandardEvent
// from it.
//
// A body is read in this order, the first fault failing it: "id", "name", "timestamp", "type"
// (required strings); "context" (a required object); then by type: "standard" reads "data"
// when present as a free-form object and types it as StandardEventData, leaving it out (without
// failing) when the typed records cannot read it; "custom" requires "customData" to be an object,
// reads it free-form and keeps it re-serialised as compact JSON text; other types read neither.
#pragma once

#include "checkout/events/WebPixelsEvent.h"
#include "common/JsonDecoding.h"
#include "vemba/checkout/events/PixelEvent.h"

namespace vemba::checkout {

// Each throws json::DecodingFailure.
WebPixelsEventBody decodeWebPixelsEventBody(const json::Json& value, const json::JsonPath& path);
WebPixelsEvent decodeWebPixelsEvent(const json::Json& value, const json::JsonPath& path);

// "customData" is written as the JSON object its text holds (the shape decoding reads); text that
// is not JSON is written as a string, which decoding then rejects.
json::Json encodeWebPixelsEventBody(const WebPixelsEventBody& body);
json::Json encodeWebPixelsEvent(const WebPixelsEvent& event);

// Moves context, id, name, timestamp and the typed data into a StandardEvent.
StandardEvent standardEventFrom(WebPixelsEventBody&& body);

}  // namespace vemba::checkout
