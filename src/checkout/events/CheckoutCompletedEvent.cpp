#include "vemba/checkout/events/CheckoutCompletedEvent.h"

namespace vemba::checkout {

CheckoutCompletedEvent createEmptyCheckoutCompletedEvent(const std::optional<std::string>& id) {
  CheckoutCompletedEvent event;
  event.orderDetails.id = id.value_or("");
  CheckoutCompletedEvent::Price& price = event.orderDetails.cart.price;
  // Present but empty, not absent: hosts see four empty prices.
  price.shipping = CheckoutCompletedEvent::Money{};
  price.subtotal = CheckoutCompletedEvent::Money{};
  price.taxes = CheckoutCompletedEvent::Money{};
  price.total = CheckoutCompletedEvent::Money{};
  return event;
}

}  // namespace vemba::checkout
