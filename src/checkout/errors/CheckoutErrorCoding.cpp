#include "checkout/errors/CheckoutErrorCoding.h"

#include <array>
#include <string_view>
#include <variant>

#include "common/JsonFields.h"

// The generic error an sdkError carries: its three parts under their field names.
namespace vemba {
constexpr auto jsonFields(json::Tag<Error> /*record*/) {
  return json::fields(json::field("domain", &Error::domain), json::field("code", &Error::code),
                      json::field("description", &Error::description));
}
}  // namespace vemba

namespace vemba::checkout {
namespace {

using json::field;
using json::fields;
using json::Json;
using json::JsonPath;
using json::Tag;

constexpr std::string_view kCodeTypeName = "CheckoutErrorCode";
using CodeCodec =
    json::RawValueCodec<CheckoutErrorCode, rawValue, checkoutErrorCodeFromRawValue, kCodeTypeName>;
using UnavailableCodec =
    json::FunctionCodec<CheckoutUnavailable, decodeCheckoutUnavailable, encodeCheckoutUnavailable>;

// Case names in the order of the variants' alternatives.
constexpr std::string_view kUnavailableTypeName = "CheckoutUnavailable";
constexpr std::array<std::string_view, 2> kUnavailableCases = {"clientError", "httpError"};
static_assert(std::variant_size_v<CheckoutUnavailable::Value> == kUnavailableCases.size());

constexpr std::string_view kErrorTypeName = "CheckoutError";
constexpr std::string_view kCaseKey = "case";
constexpr std::array<std::string_view, 4> kErrorCases = {"sdkError", "configurationError",
                                                         "checkoutUnavailable", "checkoutExpired"};
static_assert(std::variant_size_v<CheckoutError::Value> == kErrorCases.size());

}  // namespace

// The fields of each CheckoutError case, beside its "case" key.

constexpr auto jsonFields(Tag<CheckoutError::SdkError> /*record*/) {
  using R = CheckoutError::SdkError;
  return fields(field("underlying", &R::underlying), field("recoverable", &R::recoverable));
}

constexpr auto jsonFields(Tag<CheckoutError::ConfigurationError> /*record*/) {
  using R = CheckoutError::ConfigurationError;
  return fields(field("message", &R::message), field<CodeCodec>("code", &R::code),
                field("recoverable", &R::recoverable));
}

constexpr auto jsonFields(Tag<CheckoutError::Unavailable> /*record*/) {
  using R = CheckoutError::Unavailable;
  return fields(field("message", &R::message), field<UnavailableCodec>("code", &R::code),
                field("recoverable", &R::recoverable));
}

constexpr auto jsonFields(Tag<CheckoutError::Expired> /*record*/) {
  using R = CheckoutError::Expired;
  return fields(field("message", &R::message), field<CodeCodec>("code", &R::code),
                field("recoverable", &R::recoverable));
}

CheckoutErrorCode decodeCheckoutErrorCode(const Json& value, const JsonPath& path) {
  return CodeCodec::decode(value, path);
}

Json encodeCheckoutErrorCode(CheckoutErrorCode code) {
  return CodeCodec::encode(code);
}

CheckoutUnavailable decodeCheckoutUnavailable(const Json& value, const JsonPath& path) {
  const std::size_t index =
      json::decodeSingleCase(value, path, kUnavailableCases, kUnavailableTypeName);
  const Json& payload = value.begin().value();
  const JsonPath payloadPath = path / kUnavailableCases[index];
  if (index == 0) {  // clientError
    return CheckoutUnavailable::clientError(CodeCodec::decode(payload, payloadPath));
  }
  return CheckoutUnavailable::httpError(json::decodeInt(payload, payloadPath));
}

Json encodeCheckoutUnavailable(const CheckoutUnavailable& code) {
  const std::string_view caseName = kUnavailableCases[code.value().index()];
  if (const auto* client = std::get_if<CheckoutUnavailable::ClientError>(&code.value())) {
    return json::encodeSingleCase(caseName, CodeCodec::encode(client->code));
  }
  return json::encodeSingleCase(caseName,
                                std::get<CheckoutUnavailable::HttpError>(code.value()).statusCode);
}

CheckoutError decodeCheckoutError(const Json& value, const JsonPath& path) {
  using E = CheckoutError;
  json::requireObject(value, path);
  const std::size_t index = json::decodeCaseName(json::requireKey(value, kCaseKey, path),
                                                 path / kCaseKey, kErrorCases, kErrorTypeName);
  switch (index) {  // in kErrorCases order
    case 0: {
      E::SdkError error = json::decodeRecord<E::SdkError>(value, path);
      return E::sdkError(std::move(error.underlying), error.recoverable);
    }
    case 1: {
      E::ConfigurationError error = json::decodeRecord<E::ConfigurationError>(value, path);
      return E::configurationError(std::move(error.message), error.code, error.recoverable);
    }
    case 2: {
      E::Unavailable error = json::decodeRecord<E::Unavailable>(value, path);
      return E::checkoutUnavailable(std::move(error.message), error.code, error.recoverable);
    }
    default: {
      E::Expired error = json::decodeRecord<E::Expired>(value, path);
      return E::checkoutExpired(std::move(error.message), error.code, error.recoverable);
    }
  }
}

Json encodeCheckoutError(const CheckoutError& error) {
  Json out = std::visit([](const auto& value) { return json::encodeRecord(value); }, error.value());
  out[std::string(kCaseKey)] = std::string(kErrorCases[error.value().index()]);
  return out;
}

}  // namespace vemba::checkout
