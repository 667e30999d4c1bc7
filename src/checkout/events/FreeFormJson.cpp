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

JsonObject readObject(const Json& value, const JsonPath& path);
JsonArray readArray(const Json& value, const JsonPath& path);

// Fails when `value`, a container at nesting `depth`, or any container inside it is nested deeper
// than the limit: the first such container in reading order names the path.
void checkNesting(const Json& value, const JsonPath& path, std::size_t depth) {
  if (depth > kMaxFreeFormDepth) {
    json::fail(DecodingError::Kind::dataCorrupted, path,
               "Nesting deeper than " + std::to_string(kMaxFreeFormDepth) + " levels.");
  }
  if (value.is_object()) {
    for (auto it = value.begin(); it != value.end(); ++it) {
      if (it->is_structured()) {
        checkNesting(*it, path / it.key(), depth + 1);
      }
    }
  } else {
    std::size_t index = 0;
    for (const Json& element : value) {
      if (element.is_structured()) {
        checkNesting(element, path / index, depth + 1);
      }
      ++index;
    }
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

// Absent for null (and for anything no read accepts). Containers are built in place in the
// optional (a temporary JsonValue trips GCC 12's -Wmaybe-uninitialized at -O3).
std::optional<JsonValue> readMember(const Json& value, const JsonPath& path) {
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
      return std::make_optional<JsonValue>(readObject(value, path));
    case Json::value_t::array:
      return std::make_optional<JsonValue>(readArray(value, path));
    default:
      return std::nullopt;
  }
}

std::optional<JsonValue> readElement(const Json& value, const JsonPath& path) {
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
      return std::make_optional<JsonValue>(readObject(value, path));
    case Json::value_t::array:
      return std::make_optional<JsonValue>(readArray(value, path));
    default:
      return std::nullopt;
  }
}

// readObject and readArray never fail: their input has passed the checks of readJsonObject or
// readJsonArray, which also bound their recursion.
JsonObject readObject(const Json& value, const JsonPath& path) {
  JsonObject out;
  for (auto it = value.begin(); it != value.end(); ++it) {
    const std::string& key = it.key();
    if (std::optional<JsonValue> read = readMember(it.value(), path / key)) {
      out.emplace_hint(out.end(), key, std::move(*read));
    }
  }
  return out;
}

JsonArray readArray(const Json& value, const JsonPath& path) {
  JsonArray out;
  out.reserve(value.size());
  std::size_t index = 0;
  for (const Json& element : value) {
    if (std::optional<JsonValue> read = readElement(element, path / index)) {
      out.push_back(std::move(*read));
    }
    ++index;
  }
  return out;
}

}  // namespace

void checkFreeFormObject(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  checkNesting(value, path, 1);
}

JsonObject readJsonObject(const Json& value, const JsonPath& path) {
  checkFreeFormObject(value, path);
  return readObject(value, path);
}

JsonArray readJsonArray(const Json& value, const JsonPath& path) {
  json::requireArray(value, path);
  checkNesting(value, path, 1);
  return readArray(value, path);
}

double freeFormMemberDouble(const Json& value, const JsonPath& path) {
  if (!value.is_number()) {
    return json::decodeDouble(value, path);  // throws the type mismatch
  }
  const JsonValue read = readMemberNumber(value, path);
  const std::int64_t* integer = read.asInt();
  return integer != nullptr ? static_cast<double>(*integer) : *read.asDouble();
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
