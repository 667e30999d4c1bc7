// The order summary delivered with a completed checkout. Plain immutable-by-convention values;
// absent optionals mean the page did not send the field (or sent null).
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "vemba/Export.h"

namespace vemba::checkout {

struct VEMBA_EXPORT CheckoutCompletedEvent {
  // A postal address: the billing address and delivery locations.
  struct Address {
    std::optional<std::string> address1;
    std::optional<std::string> address2;
    std::optional<std::string> city;
    std::optional<std::string> countryCode;
    std::optional<std::string> firstName;
    std::optional<std::string> lastName;
    std::optional<std::string> name;
    std::optional<std::string> phone;
    std::optional<std::string> postalCode;
    std::optional<std::string> referenceId;
    std::optional<std::string> zoneCode;
    bool operator==(const Address&) const = default;
  };

  // An amount in a currency. Both parts may be absent (the empty event's prices are).
  struct Money {
    std::optional<double> amount;
    std::optional<std::string> currencyCode;
    bool operator==(const Money&) const = default;
  };

  struct Discount {
    std::optional<Money> amount;
    std::optional<std::string> applicationType;
    std::optional<std::string> title;
    std::optional<double> value;
    std::optional<std::string> valueType;
    bool operator==(const Discount&) const = default;
  };

  struct CartLineImage {
    std::optional<std::string> altText;
    std::string lg;
    std::string md;
    std::string sm;
    bool operator==(const CartLineImage&) const = default;
  };

  struct CartLine {
    std::optional<std::vector<Discount>> discounts;
    std::optional<CartLineImage> image;
    std::optional<std::string> merchandiseId;
    Money price;
    std::optional<std::string> productId;
    std::int64_t quantity = 0;
    std::string title;
    bool operator==(const CartLine&) const = default;
  };

  struct Price {
    std::optional<std::vector<Discount>> discounts;
    std::optional<Money> shipping;
    std::optional<Money> subtotal;
    std::optional<Money> taxes;
    std::optional<Money> total;
    bool operator==(const Price&) const = default;
  };

  struct CartInfo {
    std::vector<CartLine> lines;  // may be empty
    Price price;
    std::string token;
    bool operator==(const CartInfo&) const = default;
  };

  struct DeliveryDetails {
    std::optional<std::string> additionalInfo;
    std::optional<Address> location;
    std::optional<std::string> name;
    bool operator==(const DeliveryDetails&) const = default;
  };

  struct DeliveryInfo {
    DeliveryDetails details;
    std::string method;
    bool operator==(const DeliveryInfo&) const = default;
  };

  struct PaymentMethod {
    // A key the page sent with null is kept, with an absent value.
    std::map<std::string, std::optional<std::string>> details;
    std::string type;
    bool operator==(const PaymentMethod&) const = default;
  };

  struct OrderDetails {
    std::optional<Address> billingAddress;
    CartInfo cart;
    std::optional<std::vector<DeliveryInfo>> deliveries;
    std::optional<std::string> email;
    std::string id;
    std::optional<std::vector<PaymentMethod>> paymentMethods;
    std::optional<std::string> phone;
    bool operator==(const OrderDetails&) const = default;
  };

  OrderDetails orderDetails;
  bool operator==(const CheckoutCompletedEvent&) const = default;
};

// The event handed on when the summary cannot be read: `id` (or "" when absent) as the order id,
// no lines, an empty token, and a price whose shipping, subtotal, taxes and total are present but
// empty (they encode as four empty objects); every other optional is absent.
VEMBA_EXPORT CheckoutCompletedEvent
createEmptyCheckoutCompletedEvent(const std::optional<std::string>& id);

}  // namespace vemba::checkout
