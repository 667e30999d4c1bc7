// Records described once, coded both ways. A record's field table pairs each JSON key with the
// member it fills; decodeRecord reads a record with it and encodeRecord writes one, so a key is
// written in one place only:
//
//   constexpr auto jsonFields(json::Tag<Money> /*record*/) {
//     return json::fields(json::field("amount", &Money::amount),
//                         json::field("currencyCode", &Money::currencyCode));
//   }
//
// The table is a constexpr function in the record's own namespace (argument-dependent lookup finds
// it through Tag<Money>). A member of type std::optional<T> is an optional field, any other member
// a required one. The strict rules of JsonDecoding.h apply: a record must be a JSON object; a
// required key that is missing or null fails; a missing or null optional is absent; a value of the
// wrong type fails; unknown keys are ignored; fields are read in table order, so the first fault
// in that order is the one reported. Encoding writes required fields always and leaves absent
// optionals out.
//
// How a member's value is read and written is its type's Codec: strings, booleans, doubles,
// ints, signed 64-bit integers, arrays, maps of optional values and records with a table are built
// in. A field may name another codec (field<MyCodec>(...)) for a rule of its own, and a record
// coded in another translation unit is reached through a Codec specialisation made of its two
// functions (FunctionCodec).
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "common/JsonDecoding.h"

namespace vemba::json {

// Names a record type for argument-dependent lookup of its field table.
template <typename T>
struct Tag {};

// The codec of a value type: static T decode(const Json&, const JsonPath&) and
// static Json encode(const T&). Specialised below and by records.
template <typename T>
struct Codec;

template <>
struct Codec<std::string> {
  static std::string decode(const Json& value, const JsonPath& path) {
    return decodeString(value, path);
  }
  static Json encode(const std::string& value) { return value; }
};

template <>
struct Codec<bool> {
  static bool decode(const Json& value, const JsonPath& path) { return decodeBool(value, path); }
  static Json encode(bool value) { return value; }
};

template <>
struct Codec<double> {
  static double decode(const Json& value, const JsonPath& path) {
    return decodeDouble(value, path);
  }
  static Json encode(double value) { return value; }
};

// Fractions and values outside the signed 64-bit range fail.
template <>
struct Codec<std::int64_t> {
  static std::int64_t decode(const Json& value, const JsonPath& path) {
    return decodeInt(value, path);
  }
  static Json encode(std::int64_t value) { return value; }
};

// Fractions and values outside the range of int fail.
template <>
struct Codec<int> {
  static int decode(const Json& value, const JsonPath& path) { return decodeInt32(value, path); }
  static Json encode(int value) { return value; }
};

// An enumeration written as its raw string: Raw gives a case's string, From the case of a string
// (absent for none). A string that names no case fails (failInvalidRawValue, with TypeName).
template <typename E, std::string_view (*Raw)(E), std::optional<E> (*From)(std::string_view),
          const std::string_view& TypeName>
struct RawValueCodec {
  static E decode(const Json& value, const JsonPath& path) {
    const std::string& raw = decodeStringRef(value, path);
    if (const std::optional<E> decoded = From(raw)) {
      return *decoded;
    }
    failInvalidRawValue(TypeName, raw, path);
  }
  static Json encode(E value) { return std::string(Raw(value)); }
};

// A JSON array; elements in order, each with its own index in a failure's path.
template <typename T>
struct Codec<std::vector<T>> {
  static std::vector<T> decode(const Json& value, const JsonPath& path) {
    return decodeArray(value, path, Codec<T>::decode);
  }
  static Json encode(const std::vector<T>& values) {
    Json array = Json::array();
    for (const T& element : values) {
      array.push_back(Codec<T>::encode(element));
    }
    return array;
  }
};

// A JSON object whose every member is kept: null as an absent value under its key (and written
// back as null), anything else decoded as T.
template <typename T>
struct Codec<std::map<std::string, std::optional<T>>> {
  using Map = std::map<std::string, std::optional<T>>;
  static Map decode(const Json& value, const JsonPath& path) {
    requireObject(value, path);
    Map out;
    for (auto it = value.begin(); it != value.end(); ++it) {
      std::optional<T> member;
      if (!it.value().is_null()) {
        member = Codec<T>::decode(it.value(), path / it.key());
      }
      out.emplace_hint(out.end(), it.key(), std::move(member));
    }
    return out;
  }
  static Json encode(const Map& values) {
    Json object = Json::object();
    for (const auto& [key, member] : values) {
      object[key] = member ? Codec<T>::encode(*member) : Json(nullptr);
    }
    return object;
  }
};

// A codec made of a record's decode and encode functions, for a record whose table lives in
// another translation unit: template <> struct Codec<R> : FunctionCodec<R, decodeR, toJson> {};
template <typename T, T (*Decode)(const Json&, const JsonPath&), Json (*Encode)(const T&)>
struct FunctionCodec {
  static T decode(const Json& value, const JsonPath& path) { return Decode(value, path); }
  static Json encode(const T& value) { return Encode(value); }
};

// One entry of a field table: a key and the member it fills, with the value's codec (void: the
// member type's own Codec).
template <typename Record, typename Member, typename ValueCodec = void>
struct Field {
  std::string_view key;
  Member Record::*member;
};

template <typename ValueCodec = void, typename Record, typename Member>
constexpr Field<Record, Member, ValueCodec> field(std::string_view key, Member Record::*member) {
  return {key, member};
}

template <typename... Fields>
constexpr std::tuple<Fields...> fields(Fields... entries) {
  return {entries...};
}

namespace detail {

template <typename T>
struct FieldValue {
  using Type = T;
  static constexpr bool isOptional = false;
};
template <typename T>
struct FieldValue<std::optional<T>> {
  using Type = T;
  static constexpr bool isOptional = true;
};

template <typename Member, typename ValueCodec>
using CodecOf = std::conditional_t<std::is_void_v<ValueCodec>,
                                   Codec<typename FieldValue<Member>::Type>, ValueCodec>;

template <typename Record, typename Member, typename ValueCodec>
void decodeField(const Json& object, const JsonPath& path,
                 const Field<Record, Member, ValueCodec>& entry, Record& out) {
  using Coded = CodecOf<Member, ValueCodec>;
  if constexpr (FieldValue<Member>::isOptional) {
    if (const Json* value = optionalKey(object, entry.key)) {
      out.*entry.member = Coded::decode(*value, path / entry.key);
    }
  } else {
    out.*entry.member = Coded::decode(requireKey(object, entry.key, path), path / entry.key);
  }
}

template <typename Record, typename Member, typename ValueCodec>
void encodeField(const Record& record, const Field<Record, Member, ValueCodec>& entry, Json& out) {
  using Coded = CodecOf<Member, ValueCodec>;
  const Member& member = record.*entry.member;
  if constexpr (FieldValue<Member>::isOptional) {
    if (member) {
      out[std::string(entry.key)] = Coded::encode(*member);
    }
  } else {
    out[std::string(entry.key)] = Coded::encode(member);
  }
}

}  // namespace detail

// Reads every field of `table` from `object` (already known to be an object) into `out`.
template <typename Record, typename... Fields>
void decodeFields(const Json& object, const JsonPath& path, const std::tuple<Fields...>& table,
                  Record& out) {
  std::apply(
      [&](const Fields&... entries) { (detail::decodeField(object, path, entries, out), ...); },
      table);
}

// Writes every field of `table` from `record` into `out` (an object).
template <typename Record, typename... Fields>
void encodeFields(const Record& record, const std::tuple<Fields...>& table, Json& out) {
  std::apply([&](const Fields&... entries) { (detail::encodeField(record, entries, out), ...); },
             table);
}

// A record type with a field table.
template <typename T>
concept TableRecord = requires {
  jsonFields(Tag<T>{});
};

template <TableRecord Record>
Record decodeRecord(const Json& value, const JsonPath& path) {
  static constexpr auto kTable = jsonFields(Tag<Record>{});
  requireObject(value, path);
  Record out{};
  decodeFields(value, path, kTable, out);
  return out;
}

template <TableRecord Record>
Json encodeRecord(const Record& record) {
  static constexpr auto kTable = jsonFields(Tag<Record>{});
  Json out = Json::object();
  encodeFields(record, kTable, out);
  return out;
}

template <TableRecord T>
struct Codec<T> {
  static T decode(const Json& value, const JsonPath& path) { return decodeRecord<T>(value, path); }
  static Json encode(const T& value) { return encodeRecord(value); }
};

}  // namespace vemba::json
