#include "common/JsonDecoding.h"

#include <cmath>
#include <limits>

namespace vemba::json {

std::string JsonPath::str() const {
  std::vector<const JsonPath*> chain;
  for (const JsonPath* step = this; step != nullptr && step->parent_ != nullptr;
       step = step->parent_) {
    chain.push_back(step);
  }
  std::string out;
  for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
    const JsonPath& step = **it;
    if (step.isIndex_) {
      out.push_back('[');
      out += std::to_string(step.index_);
      out.push_back(']');
    } else {
      if (!out.empty()) {
        out.push_back('.');
      }
      out.append(step.key_);
    }
  }
  return out;
}

void fail(DecodingError::Kind kind, const JsonPath& path, std::string detail) {
  throw DecodingFailure(DecodingError{kind, path.str(), std::move(detail)});
}

const char* typeName(const Json& value) {
  switch (value.type()) {
    case Json::value_t::null:
      return "null";
    case Json::value_t::object:
      return "object";
    case Json::value_t::array:
      return "array";
    case Json::value_t::string:
      return "string";
    case Json::value_t::boolean:
      return "bool";
    case Json::value_t::number_integer:
    case Json::value_t::number_unsigned:
    case Json::value_t::number_float:
      return "number";
    default:
      return "unknown";
  }
}

namespace {
[[noreturn]] void mismatch(const char* expected, const Json& found, const JsonPath& path) {
  if (found.is_null()) {
    fail(DecodingError::Kind::valueNotFound, path,
         std::string("Expected ") + expected + " value but found null instead.");
  }
  fail(DecodingError::Kind::typeMismatch, path,
       std::string("Expected to decode ") + expected + " but found " + typeName(found) +
           " instead.");
}
}  // namespace

std::optional<Json> parseJson(std::string_view text) {
  Json parsed = Json::parse(text.begin(), text.end(), nullptr, /*allow_exceptions=*/false);
  if (parsed.is_discarded()) {
    return std::nullopt;
  }
  return parsed;
}

const Json& requireObject(const Json& value, const JsonPath& path) {
  if (!value.is_object()) {
    mismatch("object", value, path);
  }
  return value;
}

const Json& requireArray(const Json& value, const JsonPath& path) {
  if (!value.is_array()) {
    mismatch("array", value, path);
  }
  return value;
}

const Json& requireKey(const Json& object, std::string_view key, const JsonPath& path) {
  const auto it = object.find(key);
  if (it == object.end()) {
    fail(DecodingError::Kind::keyNotFound, path / key,
         "No value associated with key \"" + std::string(key) + "\".");
  }
  if (it->is_null()) {
    fail(DecodingError::Kind::valueNotFound, path / key, "Expected a value but found null.");
  }
  return *it;
}

const Json* optionalKey(const Json& object, std::string_view key) {
  const auto it = object.find(key);
  if (it == object.end() || it->is_null()) {
    return nullptr;
  }
  return &*it;
}

const std::string& decodeStringRef(const Json& value, const JsonPath& path) {
  if (!value.is_string()) {
    mismatch("String", value, path);
  }
  return value.get_ref<const Json::string_t&>();
}

std::string decodeString(const Json& value, const JsonPath& path) {
  return decodeStringRef(value, path);
}

bool decodeBool(const Json& value, const JsonPath& path) {
  if (!value.is_boolean()) {
    mismatch("Bool", value, path);
  }
  return value.get<bool>();
}

double decodeDouble(const Json& value, const JsonPath& path) {
  switch (value.type()) {
    case Json::value_t::number_float:
      return value.get<double>();
    case Json::value_t::number_integer:
      return static_cast<double>(value.get<std::int64_t>());
    case Json::value_t::number_unsigned:
      return static_cast<double>(value.get<std::uint64_t>());
    default:
      mismatch("Double", value, path);
  }
}

std::int64_t decodeInt(const Json& value, const JsonPath& path) {
  switch (value.type()) {
    case Json::value_t::number_integer:
      return value.get<std::int64_t>();
    case Json::value_t::number_unsigned: {
      const std::uint64_t unsignedValue = value.get<std::uint64_t>();
      if (unsignedValue > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
        fail(DecodingError::Kind::dataCorrupted, path,
             "Parsed JSON number <" + value.dump() + "> does not fit in Int.");
      }
      return static_cast<std::int64_t>(unsignedValue);
    }
    case Json::value_t::number_float: {
      // A float that is exactly an integer in range (2.0) is accepted; fractions are not.
      const double number = value.get<double>();
      constexpr double kLimit = 9223372036854775808.0;  // 2^63
      if (std::trunc(number) != number || number < -kLimit || number >= kLimit) {
        fail(DecodingError::Kind::dataCorrupted, path,
             "Parsed JSON number <" + value.dump() + "> does not fit in Int.");
      }
      return static_cast<std::int64_t>(number);
    }
    default:
      mismatch("Int", value, path);
  }
}

std::string requireString(const Json& object, std::string_view key, const JsonPath& path) {
  return decodeString(requireKey(object, key, path), path / key);
}

std::optional<std::string> optionalString(const Json& object, std::string_view key,
                                          const JsonPath& path) {
  const Json* value = optionalKey(object, key);
  return value == nullptr ? std::nullopt : std::optional(decodeString(*value, path / key));
}

double requireDouble(const Json& object, std::string_view key, const JsonPath& path) {
  return decodeDouble(requireKey(object, key, path), path / key);
}

std::optional<double> optionalDouble(const Json& object, std::string_view key,
                                     const JsonPath& path) {
  const Json* value = optionalKey(object, key);
  return value == nullptr ? std::nullopt : std::optional(decodeDouble(*value, path / key));
}

std::int64_t requireInt(const Json& object, std::string_view key, const JsonPath& path) {
  return decodeInt(requireKey(object, key, path), path / key);
}

std::optional<bool> optionalBool(const Json& object, std::string_view key, const JsonPath& path) {
  const Json* value = optionalKey(object, key);
  return value == nullptr ? std::nullopt : std::optional(decodeBool(*value, path / key));
}

int decodeInt32(const Json& value, const JsonPath& path) {
  const std::int64_t number = decodeInt(value, path);
  if (number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max()) {
    fail(DecodingError::Kind::dataCorrupted, path,
         "Parsed JSON number <" + value.dump() + "> does not fit in Int32.");
  }
  return static_cast<int>(number);
}

void failInvalidRawValue(std::string_view typeName, std::string_view raw, const JsonPath& path) {
  fail(DecodingError::Kind::dataCorrupted, path,
       "Cannot initialize " + std::string(typeName) + " from invalid String value " +
           std::string(raw));
}

namespace {
std::optional<std::size_t> indexOf(std::span<const std::string_view> names, std::string_view name) {
  for (std::size_t index = 0; index < names.size(); ++index) {
    if (names[index] == name) {
      return index;
    }
  }
  return std::nullopt;
}
}  // namespace

std::size_t decodeCaseName(const Json& value, const JsonPath& path,
                           std::span<const std::string_view> names, std::string_view typeName) {
  const std::string& raw = decodeStringRef(value, path);
  if (const std::optional<std::size_t> index = indexOf(names, raw)) {
    return *index;
  }
  failInvalidRawValue(typeName, raw, path);
}

std::size_t decodeSingleCase(const Json& value, const JsonPath& path,
                             std::span<const std::string_view> names, std::string_view typeName) {
  requireObject(value, path);
  if (const std::optional<std::size_t> index =
          value.size() == 1 ? indexOf(names, value.begin().key()) : std::nullopt) {
    return *index;
  }
  std::string expected;
  for (const std::string_view name : names) {
    expected += expected.empty() ? "\"" : ", \"";
    expected.append(name).push_back('"');
  }
  fail(DecodingError::Kind::dataCorrupted, path,
       "Expected an object with exactly one key, one of " + expected + ", for " +
           std::string(typeName) + ".");
}

Json encodeSingleCase(std::string_view caseName, Json payload) {
  Json out = Json::object();
  out[std::string(caseName)] = std::move(payload);
  return out;
}

std::string dumpCompact(const Json& value, InvalidUtf8 invalid) {
  const std::string raw =
      value.dump(-1, ' ', false,
                 invalid == InvalidUtf8::replace ? Json::error_handler_t::replace
                                                 : Json::error_handler_t::strict);
  std::string out;
  out.reserve(raw.size() + 8);
  for (const char c : raw) {
    if (c == '/') {
      out.push_back('\\');
    }
    out.push_back(c);
  }
  return out;
}

}  // namespace vemba::json
