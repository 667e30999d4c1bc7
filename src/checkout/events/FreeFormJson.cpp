#include "checkout/events/FreeFormJson.h"

#include <cmath>
#include <optional>
#include <string>
#include <utility>

namespace vemba::checkout {
namespace {

using json::DecodingError;
using json::DecodingFailure;
using json::Json;
using json::JsonPath;

Json readObject(const Json& value, const JsonPath& path);
Json readArray(const Json& value, const JsonPath& path);

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
Json readMemberNumber(const Json& value, const JsonPath& path) {
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
std::optional<Json> readMember(const Json& value, const JsonPath& path) {
  switch (value.type()) {
    case Json::value_t::boolean:
    case Json::value_t::string:
      return value;
    case Json::value_t::number_integer:
    case Json::value_t::number_unsigned:
    case Json::value_t::number_float:
      return readMemberNumber(value, path);
    case Json::value_t::object:
      return readObject(value, path);
    case Json::value_t::array:
      return readArray(value, path);
    default:
      return std::nullopt;
  }
}

std::optional<Json> readElement(const Json& value, const JsonPath& path) {
  switch (value.type()) {
    case Json::value_t::number_integer:
    case Json::value_t::number_unsigned:
    case Json::value_t::number_float:
      return Json(json::decodeDouble(value, path));
    case Json::value_t::null:
      return std::nullopt;
    default:
      return readMember(value, path);
  }
}

// readObject and readArray never fail: their input has passed the nesting check, which also
// bounds their recursion.
Json readObject(const Json& value, const JsonPath& path) {
  Json out = Json::object();
  auto& members = out.get_ref<Json::object_t&>();
  for (auto it = value.begin(); it != value.end(); ++it) {
    if (std::optional<Json> read = readMember(it.value(), path / it.key())) {
      members.emplace_hint(members.end(), it.key(), std::move(*read));
    }
  }
  return out;
}

Json readArray(const Json& value, const JsonPath& path) {
  Json out = Json::array();
  std::size_t index = 0;
  for (const Json& element : value) {
    if (std::optional<Json> read = readElement(element, path / index)) {
      out.push_back(std::move(*read));
    }
    ++index;
  }
  return out;
}

// The JsonValue image of JSON the reading above produced (no nulls, no unsigned numbers).
JsonValue toJsonValue(const Json& value);

JsonObject toJsonObject(const Json& value) {
  JsonObject object;
  for (auto it = value.begin(); it != value.end(); ++it) {
    object.emplace_hint(object.end(), it.key(), toJsonValue(it.value()));
  }
  return object;
}

JsonArray toJsonArray(const Json& value) {
  JsonArray array;
  array.reserve(value.size());
  for (const Json& element : value) {
    array.push_back(toJsonValue(element));
  }
  return array;
}

JsonValue toJsonValue(const Json& value) {
  switch (value.type()) {
    case Json::value_t::boolean:
      return JsonValue(value.get<bool>());
    case Json::value_t::string:
      return JsonValue(value.get<std::string>());
    case Json::value_t::number_integer:
      return JsonValue(value.get<std::int64_t>());
    case Json::value_t::number_float:
      return JsonValue(value.get<double>());
    case Json::value_t::object:
      return JsonValue(toJsonObject(value));
    default:
      return JsonValue(toJsonArray(value));
  }
}

}  // namespace

Json readFreeFormObject(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  checkNesting(value, path, 1);
  return readObject(value, path);
}

JsonObject readJsonObject(const Json& value, const JsonPath& path) {
  return toJsonObject(readFreeFormObject(value, path));
}

JsonArray readJsonArray(const Json& value, const JsonPath& path) {
  json::requireArray(value, path);
  checkNesting(value, path, 1);
  return toJsonArray(readArray(value, path));
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
