// The strict decoding rules shared by every record read from JSON:
// - a required key that is missing fails with keyNotFound, one that is null with valueNotFound;
// - a value of the wrong JSON type fails with typeMismatch;
// - a missing or null optional key is absent;
// - integers reject fractions and out-of-range values (dataCorrupted); strings are UTF-8
//   (the parser validates it);
// - unknown keys are ignored.
// Decoders throw DecodingFailure while walking and are wrapped by decodeText(), which returns
// an Expected. Paths are built only when a failure is reported, never on the success path.
#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/DecodingError.h"
#include "vemba/Expected.h"

namespace vemba::json {

using Json = nlohmann::json;

// One step of the path from the document's root to the value being decoded. Lives on the
// decoder's stack; `parent` outlives it.
class JsonPath {
 public:
  JsonPath() = default;
  JsonPath(const JsonPath* parent, std::string_view key) : parent_(parent), key_(key) {}
  JsonPath(const JsonPath* parent, std::size_t index)
      : parent_(parent), index_(index), isIndex_(true) {}

  JsonPath operator/(std::string_view key) const { return JsonPath(this, key); }
  JsonPath operator/(std::size_t index) const { return JsonPath(this, index); }

  std::string str() const;

 private:
  const JsonPath* parent_ = nullptr;
  std::string_view key_;
  std::size_t index_ = 0;
  bool isIndex_ = false;
};

class DecodingFailure : public std::exception {
 public:
  explicit DecodingFailure(DecodingError error) : error_(std::move(error)) {}
  const char* what() const noexcept override { return "decoding failure"; }
  const DecodingError& error() const { return error_; }

 private:
  DecodingError error_;
};

[[noreturn]] void fail(DecodingError::Kind kind, const JsonPath& path, std::string detail);

// The JSON type name used in messages ("string", "number", "object", ...).
const char* typeName(const Json& value);

// Parses text as JSON without throwing; absent when it is not valid JSON (including invalid
// UTF-8). Nesting depth is bounded by memory only: the parser is not recursive.
std::optional<Json> parseJson(std::string_view text);

const Json& requireObject(const Json& value, const JsonPath& path);
const Json& requireArray(const Json& value, const JsonPath& path);
// The value under `key` of `object` (which must be an object): missing -> keyNotFound,
// null -> valueNotFound.
const Json& requireKey(const Json& object, std::string_view key, const JsonPath& path);
// The value under `key`, or nullptr when missing or null.
const Json* optionalKey(const Json& object, std::string_view key);

std::string decodeString(const Json& value, const JsonPath& path);
// As decodeString, by reference into `value` (no copy).
const std::string& decodeStringRef(const Json& value, const JsonPath& path);
bool decodeBool(const Json& value, const JsonPath& path);
double decodeDouble(const Json& value, const JsonPath& path);
std::int64_t decodeInt(const Json& value, const JsonPath& path);
// As decodeInt, limited to the range of int.
int decodeInt32(const Json& value, const JsonPath& path);

// A string that names no case of `typeName` (an enumeration's raw value, a variant's case name):
// dataCorrupted, "Cannot initialize <typeName> from invalid String value <raw>".
[[noreturn]] void failInvalidRawValue(std::string_view typeName, std::string_view raw,
                                      const JsonPath& path);
// The index in `names` of the string `value`; any other string fails as above.
std::size_t decodeCaseName(const Json& value, const JsonPath& path,
                           std::span<const std::string_view> names, std::string_view typeName);
// A tagged value written as an object with exactly one member, keyed by its case's name: the
// index in `names` of that key. An object with more or fewer members fails (dataCorrupted), and
// so does a key that names no case.
std::size_t decodeSingleCase(const Json& value, const JsonPath& path,
                             std::span<const std::string_view> names, std::string_view typeName);
// The same shape written: {caseName: payload}.
Json encodeSingleCase(std::string_view caseName, Json payload);

std::string requireString(const Json& object, std::string_view key, const JsonPath& path);
std::optional<std::string> optionalString(const Json& object, std::string_view key,
                                          const JsonPath& path);
double requireDouble(const Json& object, std::string_view key, const JsonPath& path);
std::optional<double> optionalDouble(const Json& object, std::string_view key,
                                     const JsonPath& path);
std::int64_t requireInt(const Json& object, std::string_view key, const JsonPath& path);
std::optional<bool> optionalBool(const Json& object, std::string_view key, const JsonPath& path);

// Decodes every element of an array with `decodeElement(const Json&, const JsonPath&)`.
template <typename Fn>
auto decodeArray(const Json& value, const JsonPath& path, Fn&& decodeElement)
    -> std::vector<decltype(decodeElement(value, path))> {
  const Json& array = requireArray(value, path);
  std::vector<decltype(decodeElement(value, path))> out;
  out.reserve(array.size());
  std::size_t index = 0;
  for (const Json& element : array) {
    out.push_back(decodeElement(element, path / index));
    ++index;
  }
  return out;
}

// Runs a decoder of a whole document over its parsed root, absent when the text was not valid
// JSON: decode(root, rootPath).
template <typename Fn>
auto decodeDocument(const std::optional<Json>& root, Fn&& decode)
    -> Expected<decltype(decode(std::declval<const Json&>(), std::declval<const JsonPath&>())),
                DecodingError> {
  if (!root) {
    return Unexpected{DecodingError{DecodingError::Kind::dataCorrupted, "",
                                    "The given data was not valid JSON."}};
  }
  try {
    const JsonPath rootPath;
    return decode(*root, rootPath);
  } catch (const DecodingFailure& failure) {
    return Unexpected{failure.error()};
  }
}

// Runs a decoder of a whole document over `text`: parse, then decode(root, rootPath).
template <typename Fn>
auto decodeText(std::string_view text, Fn&& decode) {
  return decodeDocument(parseJson(text), std::forward<Fn>(decode));
}

// What dumpCompact does with a string that is not valid UTF-8.
enum class InvalidUtf8 {
  fail,     // throws Json::exception (type_error 316)
  replace,  // writes each invalid sequence as U+FFFD
};

// Serialises compactly with every "/" escaped as "\/", the encoder's house style. A "/" can
// only occur inside strings in JSON text, so escaping after dumping is exact.
std::string dumpCompact(const Json& value, InvalidUtf8 invalid = InvalidUtf8::fail);

}  // namespace vemba::json
