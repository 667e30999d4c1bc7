// One error reported by the checkout page in an "error" bridge message, and the group that
// classifies it. Value types; thread-safe to copy.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace vemba::checkout {

enum class CheckoutErrorGroup {
  authentication,  // "authentication"
  configuration,   // "configuration"
  unrecoverable,   // "unrecoverable"
  checkout,        // "checkout"
  expired,         // "expired"
  unsupported,     // "unsupported"
};

inline constexpr std::array<CheckoutErrorGroup, 6> kAllCheckoutErrorGroups = {
    CheckoutErrorGroup::authentication, CheckoutErrorGroup::configuration,
    CheckoutErrorGroup::unrecoverable,  CheckoutErrorGroup::checkout,
    CheckoutErrorGroup::expired,        CheckoutErrorGroup::unsupported};

std::string_view rawValue(CheckoutErrorGroup group);
std::optional<CheckoutErrorGroup> checkoutErrorGroupFrom(std::string_view raw);

struct CheckoutErrorEvent {
  CheckoutErrorGroup group = CheckoutErrorGroup::unsupported;
  std::optional<std::string> code;
  std::optional<std::string> flowType;
  std::optional<std::string> reason;
  std::optional<std::string> type;

  friend bool operator==(const CheckoutErrorEvent&, const CheckoutErrorEvent&) = default;
};

}  // namespace vemba::checkout
