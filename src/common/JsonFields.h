// Field-level helpers for record decoders and encoders, on top of the strict rules of
// JsonDecoding.h: a required field whose key is missing or null fails, an optional one is absent
// then, and when encoding an absent optional is left out (never written as null).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/JsonDecoding.h"

namespace vemba::json {

// The value under `key` of `object`, decoded with `decode(const Json&, const JsonPath&)`.
template <typename Fn>
auto requireField(const Json& object, std::string_view key, const JsonPath& path, Fn&& decode)
    -> decltype(decode(object, path)) {
  const Json& value = requireKey(object, key, path);
  return decode(value, path / key);
}

// As requireField, but absent when the key is missing or null.
template <typename Fn>
auto optionalField(const Json& object, std::string_view key, const JsonPath& path, Fn&& decode)
    -> std::optional<decltype(decode(object, path))> {
  const Json* value = optionalKey(object, key);
  if (value == nullptr) {
    return std::nullopt;
  }
  return decode(*value, path / key);
}

// A decoder of an array whose elements are decoded with `decodeElement`.
template <typename Fn>
constexpr auto arrayOf(Fn decodeElement) {
  return [decodeElement](const Json& value, const JsonPath& path) {
    return decodeArray(value, path, decodeElement);
  };
}

// Writes `value` under `key`; the object must be an object (or null, which becomes one).
template <typename T>
void put(Json& object, std::string_view key, T&& value) {
  object[std::string(key)] = std::forward<T>(value);
}

// Writes `value` under `key` when present; leaves the key out when absent.
template <typename T>
void putOptional(Json& object, std::string_view key, const std::optional<T>& value) {
  if (value) {
    put(object, key, *value);
  }
}

// Writes `encode(*value)` under `key` when present; leaves the key out when absent.
template <typename T, typename Fn>
void putOptional(Json& object, std::string_view key, const std::optional<T>& value, Fn&& encode) {
  if (value) {
    put(object, key, encode(*value));
  }
}

// A JSON array of `encode(element)` for every element, in order.
template <typename T, typename Fn>
Json encodeArray(const std::vector<T>& values, Fn&& encode) {
  Json array = Json::array();
  for (const T& element : values) {
    array.push_back(encode(element));
  }
  return array;
}

// An encoder of an array whose elements are encoded with `encodeElement`.
template <typename Fn>
constexpr auto arrayEncoder(Fn encodeElement) {
  return [encodeElement](const auto& values) { return encodeArray(values, encodeElement); };
}

}  // namespace vemba::json
