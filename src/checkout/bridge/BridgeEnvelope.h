// The envelope of a page-to-kit bridge message: JSON text of an object {"name": ..., "body": ...}.
//
// readEnvelope() parses the text without building the whole document: it keeps the type of the
// root and, for an object, its "name" and "body" members, which is all the bridge and the message
// decoders ever look at. The body string is moved out of the parser rather than copied.
#pragma once

#include <optional>
#include <string_view>

#include "common/JsonDecoding.h"

namespace vemba::checkout {

inline constexpr std::string_view kEnvelopeNameKey = "name";
inline constexpr std::string_view kEnvelopeBodyKey = "body";

// Absent exactly when json::parseJson(text) is (same parser, same rules for UTF-8, numbers and
// trailing text). Otherwise a value of the same JSON type as the text's root. When the root is an
// object, the result holds its "name" and "body" members when present (the last of each when a
// key repeats, as in the parsed document), of the same JSON type and, for scalars, the same value;
// members that are objects or arrays are kept empty, and other members are left out.
std::optional<json::Json> readEnvelope(std::string_view text);

// The member `key` of `envelope` as a required string, by reference into `envelope`. Throws
// json::DecodingFailure as json::requireString would: keyNotFound when missing, valueNotFound
// when null, typeMismatch when not a string.
std::string_view requireEnvelopeString(const json::Json& envelope, std::string_view key);

}  // namespace vemba::checkout
