#include "checkout/bridge/BridgeEnvelope.h"

#include <cstddef>
#include <string>
#include <utility>

namespace vemba::checkout {
namespace {

using json::Json;

// Receives the parser's events and keeps the root and its kept members. The value being read
// goes to the root at depth 0, to the member selected by the last key at depth 1, and nowhere
// deeper: the contents of nested containers are validated by the parser and dropped.
class EnvelopeReader final : public nlohmann::json_sax<Json> {
 public:
  bool null() override { return keep(nullptr); }
  bool boolean(bool value) override { return keep(value); }
  bool number_integer(number_integer_t value) override { return keep(value); }
  bool number_unsigned(number_unsigned_t value) override { return keep(value); }
  bool number_float(number_float_t value, const string_t& /*text*/) override { return keep(value); }
  // The parser allows its string buffer to be moved from.
  bool string(string_t& value) override { return keep(std::move(value)); }
  bool binary(binary_t& /*value*/) override { return true; }  // JSON text has none

  bool start_object(std::size_t /*elements*/) override { return open(Json::object()); }
  bool start_array(std::size_t /*elements*/) override { return open(Json::array()); }
  bool end_object() override { return close(); }
  bool end_array() override { return close(); }

  bool key(string_t& key) override {
    if (depth_ == 1) {
      // operator[] reuses the member of an earlier, repeated key: the last value wins.
      member_ = key == kEnvelopeNameKey || key == kEnvelopeBodyKey ? &root_[key] : nullptr;
    }
    return true;
  }

  bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                   const nlohmann::detail::exception& /*error*/) override {
    return false;
  }

  Json take() { return std::move(root_); }

 private:
  template <typename T>
  bool keep(T&& value) {
    Json* slot = depth_ == 0 ? &root_ : depth_ == 1 ? member_ : nullptr;
    if (slot != nullptr) {
      *slot = Json(std::forward<T>(value));
    }
    if (depth_ == 1) {
      member_ = nullptr;  // the member's value has been read
    }
    return true;
  }

  bool open(Json emptyContainer) {
    keep(std::move(emptyContainer));
    ++depth_;
    return true;
  }

  bool close() {
    --depth_;
    return true;
  }

  Json root_;
  std::size_t depth_ = 0;
  Json* member_ = nullptr;
};

}  // namespace

std::optional<Json> readEnvelope(std::string_view text) {
  EnvelopeReader reader;
  if (!Json::sax_parse(text.begin(), text.end(), &reader)) {
    return std::nullopt;
  }
  return reader.take();
}

std::string_view requireEnvelopeString(const Json& envelope, std::string_view key) {
  const json::JsonPath root;
  return json::decodeStringRef(json::requireKey(envelope, key, root), root / key);
}

}  // namespace vemba::checkout
