#include "checkout/events/FreeFormJson.h"

#include <cmath>
#include <string>
#include <utility>

namespace vemba::checkout {
namespace {

using json::DecodingError;
using json::DecodingFailure;
using json::Json;
using json::JsonPath;

JsonObject readObject(const Json& value, const JsonPath& path, std::size_t depth);
JsonArray readArray(const Json& value, const JsonPath& path, std::size_t depth);

void checkDepth(const JsonPath& path, std::size_t depth) {
  if (depth > kMaxFreeFormDepth) {
    json::fail(DecodingError::Kind::dataCorrupted, path,
               "Nesting deeper than " + std::to_string(kMaxFreeFormDepth) + " levels.");
  }
}

// An object member number: an integer when it reads as one under the strict integer rule,
// otherwise a double.
JsonValue readMemberNumber(const Json& value, const JsonPath& path) {
  // A number with a fraction never reads as an integer: skip the attempt and its exception.
  if (value.is_number_float()) {
    const double number = value.get<double>();
    if (std::trunc(number) != number) {
      return number;
    }
  }
  try {
    return json::decodeInt(value, path);
  } catch (const DecodingFailure&) {
    return json::decodeDouble(value, path);
  }
}

// Absent for null (and for anything no read accepts).
std::optional<JsonValue> readMember(const Json& value, const JsonPath& path, std::size_t depth) {
  switch (value.type()) {
    case Json::value_t::boolean:
      return JsonValue(value.get<bool>());
    case Json::value_t::string:
      return JsonValue(value.get<std::string>());
    case Json::value_t::number_integer:
    case Json::value_t::number_unsigned:
    case Json::value_t::number_float:
      return readMemberNumber(value, path);
    case Json::value_t::object:
      return JsonValue(readObject(value, path, depth + 1));
    case Json::value_t::array:
      return JsonValue(readArray(value, path, depth + 1));
    default:
      return std::nullopt;
  }
}

std::optional<JsonValue> readElement(const Json& value, const JsonPath& path, std::size_t depth) {
  switch (value.type()) {
    case Json::value_t::boolean:
      return JsonValue(value.get<bool>());
    case Json::value_t::number_integer:
    case Json::value_t::number_unsigned:
    case Json::value_t::number_float:
      return JsonValue(json::decodeDouble(value, path));
    case Json::value_t::string:
      return JsonValue(value.get<std::string>());
    case Json::value_t::object:
      return JsonValue(readObject(value, path, depth + 1));
    case Json::value_t::array:
      return JsonValue(readArray(value, path, depth + 1));
    default:
      return std::nullopt;
  }
}

JsonObject readObject(const Json& value, const JsonPath& path, std::size_t depth) {
  json::requireObject(value, path);
  checkDepth(path, depth);
  JsonObject out;
  for (auto it = value.begin(); it != value.end(); ++it) {
    const std::string& key = it.key();
    if (std::optional<JsonValue> read = readMember(it.value(), path / key, depth)) {
      out.emplace_hint(out.end(), key, std::move(*read));
    }
  }
  return out;
}

JsonArray readArray(const Json& value, const JsonPath& path, std::size_t depth) {
  json::requireArray(value, path);
  checkDepth(path, depth);
  JsonArray out;
  out.reserve(value.size());
  std::size_t index = 0;
  for (const Json& element : value) {
    if (std::optional<JsonValue> read = readElement(element, path / index, depth)) {
      out.push_back(std::move(*read));
    }
    ++index;
  }
  return out;
}

}  // namespace

JsonObject readJsonObject(const Json& value, const JsonPath& path) {
  return readObject(value, path, 1);
}

JsonArray readJsonArray(const Json& value, const JsonPath& path) {
  return readArray(value, path, 1);
}

Json toJson(const JsonObject& object) {
  Json out = Json::object();
  for (const auto& [key, member] : object) {
    out[key] = toJson(member);
  }
  return out;
}

Json toJson(const JsonValue& value) {
  struct Encoder {
    Json operator()(bool b) const { return b; }
    Json operator()(const std::string& s) const { return s; }
    Json operator()(std::int64_t i) const { return i; }
    Json operator()(double d) const { return d; }
    Json operator()(const JsonObject& o) const { return toJson(o); }
    Json operator()(const JsonArray& a) const {
      Json out = Json::array();
      for (const JsonValue& element : a) {
        out.push_back(toJson(element));
      }
      return out;
    }
  };
  return std::visit(Encoder{}, value.storage());
}

}  // namespace vemba::checkout
