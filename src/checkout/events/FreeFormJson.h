// Reading JSON whose shape is not known in advance, and writing it back.
//
// Type preferences when reading (deliberate, and visible to hosts):
// - an object member is read as the first of: boolean, string, signed 64-bit integer, double,
//   object, array. So 3 stays an integer and 2.5 becomes a double;
// - an array element is read as the first of: boolean, double, string, object, array. So every
//   number inside an array becomes a double;
// - nulls are left out, in objects and arrays alike, without failing.
// Containers nested deeper than kMaxFreeFormDepth fail the read (dataCorrupted), as a value of the
// wrong type would, so hostile nesting cannot exhaust the stack.
//
// The reading is done once, into JSON (readFreeFormObject); JsonValue is that JSON's one-to-one
// image, so readJsonObject(v) and readFreeFormObject(v) always hold the same values.
#pragma once

#include <cstddef>

#include "common/JsonDecoding.h"
#include "vemba/checkout/events/JsonValue.h"

namespace vemba::checkout {

// The outermost container read counts as depth 1.
inline constexpr std::size_t kMaxFreeFormDepth = 512;

// The object as the reading above leaves it, as JSON: what toJson(readJsonObject(value, path))
// gives, without the JsonValue tree. Integers are JSON integers, doubles JSON floating-point
// numbers. Fails with typeMismatch when `value` is not an object.
json::Json readFreeFormObject(const json::Json& value, const json::JsonPath& path);

// Fails with typeMismatch when `value` is not an object.
JsonObject readJsonObject(const json::Json& value, const json::JsonPath& path);
// Fails with typeMismatch when `value` is not an array.
JsonArray readJsonArray(const json::Json& value, const json::JsonPath& path);

// Integers stay JSON integers and doubles JSON floating-point numbers.
json::Json toJson(const JsonValue& value);
json::Json toJson(const JsonObject& object);

}  // namespace vemba::checkout
