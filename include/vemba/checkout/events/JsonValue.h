// A free-form JSON value as the checkout page sent it, for event data whose shape the kit does not
// know in advance. Value type; copies are deep.
//
// There is no null: nulls are dropped when a free-form value is read. Numbers keep the kind they
// were read as: an integer read as `std::int64_t`, a number with a fraction as `double`.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "vemba/Export.h"

namespace vemba::checkout {

class JsonValue;

// Keys in ascending order.
using JsonObject = std::map<std::string, JsonValue>;
using JsonArray = std::vector<JsonValue>;

class VEMBA_EXPORT JsonValue {
 public:
  // Alternatives in the order a free-form object member is tried when read.
  using Storage = std::variant<bool, std::string, std::int64_t, double, JsonObject, JsonArray>;

  // A default value is `false`.
  JsonValue() : storage_(false) {}
  JsonValue(bool value) : storage_(value) {}                      // NOLINT
  JsonValue(std::string value) : storage_(std::move(value)) {}    // NOLINT
  JsonValue(const char* value) : storage_(std::string(value)) {}  // NOLINT
  JsonValue(std::int64_t value) : storage_(value) {}              // NOLINT
  JsonValue(int value) : storage_(std::int64_t{value}) {}         // NOLINT
  JsonValue(double value) : storage_(value) {}                    // NOLINT
  JsonValue(JsonObject value) : storage_(std::move(value)) {}     // NOLINT
  JsonValue(JsonArray value) : storage_(std::move(value)) {}      // NOLINT

  const Storage& storage() const { return storage_; }

  bool isBool() const { return std::holds_alternative<bool>(storage_); }
  bool isString() const { return std::holds_alternative<std::string>(storage_); }
  bool isInt() const { return std::holds_alternative<std::int64_t>(storage_); }
  bool isDouble() const { return std::holds_alternative<double>(storage_); }
  bool isObject() const { return std::holds_alternative<JsonObject>(storage_); }
  bool isArray() const { return std::holds_alternative<JsonArray>(storage_); }

  // Nullptr when the value holds another alternative.
  const bool* asBool() const { return std::get_if<bool>(&storage_); }
  const std::string* asString() const { return std::get_if<std::string>(&storage_); }
  const std::int64_t* asInt() const { return std::get_if<std::int64_t>(&storage_); }
  const double* asDouble() const { return std::get_if<double>(&storage_); }
  const JsonObject* asObject() const { return std::get_if<JsonObject>(&storage_); }
  const JsonArray* asArray() const { return std::get_if<JsonArray>(&storage_); }

  // Same alternative and equal contents: the integer 1 and the double 1.0 differ.
  friend bool operator==(const JsonValue& lhs, const JsonValue& rhs) {
    return lhs.storage_ == rhs.storage_;
  }

 private:
  Storage storage_;
};

}  // namespace vemba::checkout
