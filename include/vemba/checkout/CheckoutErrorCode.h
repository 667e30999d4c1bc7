// The codes a checkout failure carries, and the two kinds of "checkout unavailable" codes.
// Value types; thread-safe to copy.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "vemba/Export.h"

namespace vemba::checkout {

enum class CheckoutErrorCode {
  storefrontPasswordRequired,  // "storefront_password_required"
  cartExpired,                 // "cart_expired"
  cartCompleted,               // "cart_completed"
  invalidCart,                 // "invalid_cart"
  unknown,                     // "unknown"
};

inline constexpr std::array<CheckoutErrorCode, 5> kAllCheckoutErrorCodes = {
    CheckoutErrorCode::storefrontPasswordRequired, CheckoutErrorCode::cartExpired,
    CheckoutErrorCode::cartCompleted, CheckoutErrorCode::invalidCart, CheckoutErrorCode::unknown};

// The raw value, e.g. "cart_expired".
VEMBA_EXPORT std::string_view rawValue(CheckoutErrorCode code);
// The case name, e.g. "cartExpired" (used in log lines).
VEMBA_EXPORT std::string_view caseName(CheckoutErrorCode code);
// The code whose raw value is exactly `raw`, else absent.
VEMBA_EXPORT std::optional<CheckoutErrorCode> checkoutErrorCodeFromRawValue(std::string_view raw);
// Never fails: the matching code, or `unknown` for an absent or unmatched string.
VEMBA_EXPORT CheckoutErrorCode checkoutErrorCodeFrom(const std::optional<std::string>& code);

// Why a checkout is unavailable: a code sent by the checkout page, or the HTTP status of the
// checkout document.
class VEMBA_EXPORT CheckoutUnavailable {
 public:
  struct ClientError {
    CheckoutErrorCode code = CheckoutErrorCode::unknown;
    friend bool operator==(const ClientError&, const ClientError&) = default;
  };
  struct HttpError {
    std::int64_t statusCode = 0;
    friend bool operator==(const HttpError&, const HttpError&) = default;
  };
  using Value = std::variant<ClientError, HttpError>;

  static CheckoutUnavailable clientError(CheckoutErrorCode code) {
    return CheckoutUnavailable(ClientError{code});
  }
  static CheckoutUnavailable httpError(std::int64_t statusCode) {
    return CheckoutUnavailable(HttpError{statusCode});
  }

  const Value& value() const { return value_; }
  friend bool operator==(const CheckoutUnavailable&, const CheckoutUnavailable&) = default;

 private:
  explicit CheckoutUnavailable(Value value) : value_(value) {}
  Value value_;
};

}  // namespace vemba::checkout
