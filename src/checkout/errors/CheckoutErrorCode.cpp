#include "vemba/checkout/CheckoutErrorCode.h"

namespace vemba::checkout {
namespace {

struct CodeNames {
  std::string_view raw;
  std::string_view caseName;
};

// Indexed by the enumeration's case order.
constexpr std::array<CodeNames, 5> kNames = {{
    {"storefront_password_required", "storefrontPasswordRequired"},
    {"cart_expired", "cartExpired"},
    {"cart_completed", "cartCompleted"},
    {"invalid_cart", "invalidCart"},
    {"unknown", "unknown"},
}};

}  // namespace

std::string_view rawValue(CheckoutErrorCode code) {
  return kNames.at(static_cast<std::size_t>(code)).raw;
}

std::string_view caseName(CheckoutErrorCode code) {
  return kNames.at(static_cast<std::size_t>(code)).caseName;
}

std::optional<CheckoutErrorCode> checkoutErrorCodeFromRawValue(std::string_view raw) {
  for (const CheckoutErrorCode code : kAllCheckoutErrorCodes) {
    if (rawValue(code) == raw) {
      return code;
    }
  }
  return std::nullopt;
}

CheckoutErrorCode checkoutErrorCodeFrom(const std::optional<std::string>& code) {
  if (!code) {
    return CheckoutErrorCode::unknown;
  }
  return checkoutErrorCodeFromRawValue(*code).value_or(CheckoutErrorCode::unknown);
}

}  // namespace vemba::checkout
